#include "backends/macos/CoreAudioMicrophone.hpp"

#include "backends/macos/CFRef.hpp"

#import <CoreAudio/CoreAudio.h>
#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>
#include <string>
#include <vector>

namespace hg {

namespace {

constexpr AudioObjectPropertyAddress runningSomewhere{kAudioDevicePropertyDeviceIsRunningSomewhere,
                                                      kAudioObjectPropertyScopeGlobal,
                                                      kAudioObjectPropertyElementMain};
constexpr AudioObjectPropertyAddress defaultInputDevice{kAudioHardwarePropertyDefaultInputDevice,
                                                        kAudioObjectPropertyScopeGlobal,
                                                        kAudioObjectPropertyElementMain};
constexpr AudioObjectPropertyAddress deviceList{kAudioHardwarePropertyDevices,
                                                kAudioObjectPropertyScopeGlobal,
                                                kAudioObjectPropertyElementMain};
constexpr AudioObjectPropertyAddress anyInputMute{
    kAudioDevicePropertyMute, kAudioDevicePropertyScopeInput, kAudioObjectPropertyElementWildcard};

AudioObjectPropertyAddress inputMute(UInt32 element) {
    return {kAudioDevicePropertyMute, kAudioDevicePropertyScopeInput, element};
}

// A property of one fixed-size value; none when it cannot be read.
template <typename Value>
std::optional<Value> read(AudioObjectID object, const AudioObjectPropertyAddress& where) {
    if (!AudioObjectHasProperty(object, &where)) {
        return std::nullopt;
    }
    Value value{};
    UInt32 size = sizeof(value);
    if (AudioObjectGetPropertyData(object, &where, 0, nullptr, &size, &value) != noErr ||
        size != sizeof(value)) {
        return std::nullopt;
    }
    return value;
}

std::vector<AudioDeviceID> devices() {
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(kAudioObjectSystemObject, &deviceList, 0, nullptr, &size) !=
        noErr) {
        return {};
    }
    std::vector<AudioDeviceID> found(size / sizeof(AudioDeviceID));
    if (AudioObjectGetPropertyData(kAudioObjectSystemObject, &deviceList, 0, nullptr, &size,
                                   found.data()) != noErr) {
        return {};
    }
    found.resize(size / sizeof(AudioDeviceID));
    return found;
}

std::string uidOf(AudioDeviceID device) {
    constexpr AudioObjectPropertyAddress where{kAudioDevicePropertyDeviceUID,
                                               kAudioObjectPropertyScopeGlobal,
                                               kAudioObjectPropertyElementMain};
    CFRef<CFStringRef> uid;
    UInt32 size = sizeof(CFStringRef);
    if (AudioObjectGetPropertyData(device, &where, 0, nullptr, &size, uid.receive()) != noErr ||
        !uid) {
        return {};
    }
    const char* text = [(__bridge NSString*)uid.get() UTF8String];
    return text != nullptr ? std::string(text) : std::string();
}

std::optional<AudioDeviceID> deviceWithUID(const std::string& uid) {
    if (uid.empty()) {
        return std::nullopt;
    }
    for (const AudioDeviceID device : devices()) {
        if (uidOf(device) == uid) {
            return device;
        }
    }
    return std::nullopt;
}

// The input channels' count, from the device's input stream layout.
UInt32 inputChannels(AudioDeviceID device) {
    constexpr AudioObjectPropertyAddress where{kAudioDevicePropertyStreamConfiguration,
                                               kAudioDevicePropertyScopeInput,
                                               kAudioObjectPropertyElementMain};
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(device, &where, 0, nullptr, &size) != noErr ||
        size < sizeof(AudioBufferList)) {
        return 0;
    }
    std::vector<std::byte> storage(size);
    auto* list = reinterpret_cast<AudioBufferList*>(storage.data());
    if (AudioObjectGetPropertyData(device, &where, 0, nullptr, &size, list) != noErr) {
        return 0;
    }
    UInt32 channels = 0;
    for (UInt32 i = 0; i < list->mNumberBuffers; ++i) {
        channels += list->mBuffers[i].mNumberChannels;
    }
    return channels;
}

// The elements that carry the input's mute: the main one when it has a
// control, else each channel that has one.
std::vector<UInt32> muteElements(AudioDeviceID device) {
    const auto main = inputMute(kAudioObjectPropertyElementMain);
    if (AudioObjectHasProperty(device, &main)) {
        return {kAudioObjectPropertyElementMain};
    }
    std::vector<UInt32> elements;
    const UInt32 channels = inputChannels(device);
    for (UInt32 channel = 1; channel <= channels; ++channel) {
        const auto address = inputMute(channel);
        if (AudioObjectHasProperty(device, &address)) {
            elements.push_back(channel);
        }
    }
    return elements;
}

} // namespace

// The listeners registered while a change handler is set: on the system
// object, and on every device, re-registered when the device list changes.
struct CoreAudioMicrophone::Listeners {
    std::function<void()> onChange;
    AudioObjectPropertyListenerBlock block = nil;
    std::vector<AudioDeviceID> watched;

    void add(AudioObjectID object, const AudioObjectPropertyAddress& where) const {
        AudioObjectAddPropertyListenerBlock(object, &where, dispatch_get_main_queue(), block);
    }
    void remove(AudioObjectID object, const AudioObjectPropertyAddress& where) const {
        AudioObjectRemovePropertyListenerBlock(object, &where, dispatch_get_main_queue(), block);
    }

    void watchDevices() {
        for (const AudioDeviceID device : watched) {
            remove(device, runningSomewhere);
            remove(device, anyInputMute);
        }
        watched = devices();
        for (const AudioDeviceID device : watched) {
            add(device, runningSomewhere);
            add(device, anyInputMute);
        }
    }

    ~Listeners() {
        remove(kAudioObjectSystemObject, defaultInputDevice);
        remove(kAudioObjectSystemObject, deviceList);
        for (const AudioDeviceID device : watched) {
            remove(device, runningSomewhere);
            remove(device, anyInputMute);
        }
    }
};

CoreAudioMicrophone::CoreAudioMicrophone(LineSink& out) : out_(out) {}

CoreAudioMicrophone::~CoreAudioMicrophone() = default;

std::string CoreAudioMicrophone::defaultInput() {
    const auto device = read<AudioDeviceID>(kAudioObjectSystemObject, defaultInputDevice);
    if (!device || *device == kAudioObjectUnknown) {
        return {};
    }
    return uidOf(*device);
}

std::optional<bool> CoreAudioMicrophone::isRecording(const std::string& input) {
    const auto device = deviceWithUID(input);
    if (!device) {
        return std::nullopt;
    }
    const auto running = read<UInt32>(*device, runningSomewhere);
    return running ? std::optional<bool>(*running != 0) : std::nullopt;
}

std::optional<std::vector<std::string>> CoreAudioMicrophone::recordedInputs() {
    std::vector<std::string> names;
    for (const AudioDeviceID device : devices()) {
        if (inputChannels(device) > 0 && read<UInt32>(device, runningSomewhere).value_or(0) != 0) {
            names.push_back(uidOf(device));
        }
    }
    return names;
}

std::optional<bool> CoreAudioMicrophone::isMuted(const std::string& input) {
    const auto device = deviceWithUID(input);
    if (!device) {
        return std::nullopt;
    }
    const auto elements = muteElements(*device);
    if (elements.empty()) {
        sayNoMuteControl(*device);
        return std::nullopt;
    }
    // Muted only when every channel is: one live channel lets the voice out.
    for (const UInt32 element : elements) {
        const auto muted = read<UInt32>(*device, inputMute(element));
        if (!muted) {
            return std::nullopt;
        }
        if (*muted == 0) {
            return false;
        }
    }
    return true;
}

bool CoreAudioMicrophone::setMuted(const std::string& input, bool muted) {
    const auto device = deviceWithUID(input);
    if (!device) {
        out_.line("Microphone: there is no such input");
        return false;
    }
    bool setOne = false;
    const UInt32 value = muted ? 1 : 0;
    for (const UInt32 element : muteElements(*device)) {
        const auto address = inputMute(element);
        Boolean settable = false;
        if (AudioObjectIsPropertySettable(*device, &address, &settable) != noErr || !settable) {
            continue;
        }
        const OSStatus status =
            AudioObjectSetPropertyData(*device, &address, 0, nullptr, sizeof(value), &value);
        if (status != noErr) {
            out_.line("Microphone: Core Audio refused the mute (status " + std::to_string(status) +
                      ")");
            return false;
        }
        setOne = true;
    }
    if (!setOne) {
        sayNoMuteControl(*device);
    }
    return setOne;
}

void CoreAudioMicrophone::setChangeHandler(std::function<void()> onChange) {
    listeners_.reset();
    if (!onChange) {
        return;
    }
    listeners_ = std::make_shared<Listeners>();
    listeners_->onChange = std::move(onChange);
    // Called on the main queue, where a call already queued may still run
    // after the listeners are gone: it then does nothing.
    const std::weak_ptr<Listeners> weak = listeners_;
    listeners_->block = ^(UInt32 count, const AudioObjectPropertyAddress* addresses) {
      const auto listeners = weak.lock();
      if (!listeners) {
          return;
      }
      for (UInt32 i = 0; i < count; ++i) {
          if (addresses[i].mSelector == kAudioHardwarePropertyDevices) {
              listeners->watchDevices();
          }
      }
      listeners->onChange();
    };
    listeners_->add(kAudioObjectSystemObject, defaultInputDevice);
    listeners_->add(kAudioObjectSystemObject, deviceList);
    listeners_->watchDevices();
}

void CoreAudioMicrophone::sayNoMuteControl(unsigned device) {
    if (device != deviceWithoutMuteSaid_) {
        deviceWithoutMuteSaid_ = device;
        out_.line("Microphone: the default input has no mute control");
    }
}

} // namespace hg
