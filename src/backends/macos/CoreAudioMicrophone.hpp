#pragma once

#include "ports/LineSink.hpp"
#include "ports/Microphone.hpp"

namespace hg {

// The system's default input device through Core Audio. In use while any
// process runs audio on that device (the device's "running somewhere"
// property; for a device that also plays sound, playing counts too). Muted
// through the device's own mute control in the input scope; a device without
// one cannot be muted, which is said once per device on `out`. The default
// device is looked up afresh on every call, so switching inputs is followed.
class CoreAudioMicrophone final : public Microphone {
public:
    explicit CoreAudioMicrophone(LineSink& out) : out_(out) {}

    bool isInUse() override;
    std::optional<bool> isMuted() override;
    bool setMuted(bool muted) override;

private:
    void sayNoMuteControl(unsigned device);

    LineSink& out_;
    unsigned deviceWithoutMuteSaid_ = 0;
};

} // namespace hg
