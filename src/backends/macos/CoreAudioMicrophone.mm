#include "backends/macos/CoreAudioMicrophone.hpp"

#import <CoreAudio/CoreAudio.h>
#include <string>

namespace hg {

namespace {

constexpr AudioObjectPropertyAddress runningSomewhere{kAudioDevicePropertyDeviceIsRunningSomewhere,
                                                      kAudioObjectPropertyScopeGlobal,
                                                      kAudioObjectPropertyElementMain};
constexpr AudioObjectPropertyAddress inputMute{
    kAudioDevicePropertyMute, kAudioDevicePropertyScopeInput, kAudioObjectPropertyElementMain};

// A property of one UInt32-sized value; none when it cannot be read.
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

std::optional<AudioDeviceID> defaultInput() {
    constexpr AudioObjectPropertyAddress where{kAudioHardwarePropertyDefaultInputDevice,
                                               kAudioObjectPropertyScopeGlobal,
                                               kAudioObjectPropertyElementMain};
    const auto device = read<AudioDeviceID>(kAudioObjectSystemObject, where);
    if (!device || *device == kAudioObjectUnknown) {
        return std::nullopt;
    }
    return device;
}

} // namespace

bool CoreAudioMicrophone::isInUse() {
    const auto device = defaultInput();
    return device && read<UInt32>(*device, runningSomewhere).value_or(0) != 0;
}

std::optional<bool> CoreAudioMicrophone::isMuted() {
    const auto device = defaultInput();
    if (!device) {
        return std::nullopt;
    }
    const auto muted = read<UInt32>(*device, inputMute);
    if (!muted) {
        sayNoMuteControl(*device);
        return std::nullopt;
    }
    return *muted != 0;
}

bool CoreAudioMicrophone::setMuted(bool muted) {
    const auto device = defaultInput();
    if (!device) {
        out_.line("Microphone: there is no default input");
        return false;
    }
    Boolean settable = false;
    if (!AudioObjectHasProperty(*device, &inputMute) ||
        AudioObjectIsPropertySettable(*device, &inputMute, &settable) != noErr || !settable) {
        sayNoMuteControl(*device);
        return false;
    }
    const UInt32 value = muted ? 1 : 0;
    const OSStatus status =
        AudioObjectSetPropertyData(*device, &inputMute, 0, nullptr, sizeof(value), &value);
    if (status != noErr) {
        out_.line("Microphone: Core Audio refused the mute (status " + std::to_string(status) +
                  ")");
        return false;
    }
    return true;
}

void CoreAudioMicrophone::sayNoMuteControl(unsigned device) {
    if (device != deviceWithoutMuteSaid_) {
        deviceWithoutMuteSaid_ = device;
        out_.line("Microphone: the default input has no mute control");
    }
}

} // namespace hg
