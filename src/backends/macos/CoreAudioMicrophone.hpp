#pragma once

#include "ports/LineSink.hpp"
#include "ports/Microphone.hpp"

#include <memory>

namespace hg {

// The audio input devices through Core Audio, named by their device UID. A
// device records while any process runs audio on it (the device's "running
// somewhere" property; for a device that also plays sound, playing counts
// too). Muted through the device's mute control in the input scope: the main
// element's, or, on a device that has none there, each channel's (muted when
// every channel with a control is; setting sets every settable channel). A
// device without any cannot be muted, which is said once per device on `out`.
// The default device is looked up afresh on every call, so switching inputs is
// followed. With a change handler set, property listeners on the main queue
// report a new default input, a device starting or stopping, a mute changing
// and devices coming and going.
class CoreAudioMicrophone final : public Microphone {
public:
    explicit CoreAudioMicrophone(LineSink& out);
    ~CoreAudioMicrophone() override;
    CoreAudioMicrophone(const CoreAudioMicrophone&) = delete;
    CoreAudioMicrophone& operator=(const CoreAudioMicrophone&) = delete;

    std::string defaultInput() override;
    std::optional<bool> isRecording(const std::string& input) override;
    std::optional<std::vector<std::string>> recordedInputs() override;
    std::optional<bool> isMuted(const std::string& input) override;
    bool setMuted(const std::string& input, bool muted) override;
    void setChangeHandler(std::function<void()> onChange) override;

private:
    void sayNoMuteControl(unsigned device);

    struct Listeners;
    LineSink& out_;
    unsigned deviceWithoutMuteSaid_ = 0;
    std::shared_ptr<Listeners> listeners_;
};

} // namespace hg
