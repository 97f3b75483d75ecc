#pragma once

#include "core/MeetingApp.hpp"
#include "ports/LineSink.hpp"
#include "ports/Microphone.hpp"

#include <string>
#include <string_view>

namespace hg {

// Any call app the program cannot read (a browser call, a chat app), seen
// through the system's default input: while some application records from
// it there is a call, muted or live as the input is. Toggling mutes or
// unmutes the input itself, which silences whatever records from it.
//
// A mute this adapter put on the input lasts as long as the recording: when
// nothing records any more it lifts it, so that the next call, which may be
// one the program drives through the app's own mute, does not start silent.
class MicrophoneMeetingApp final : public MeetingApp {
public:
    MicrophoneMeetingApp(Microphone& microphone, LineSink& out);

    static constexpr std::string_view appName = "Microphone";
    [[nodiscard]] std::string name() const override { return std::string(appName); }

    // notRunning while nothing records; onMute or offMute from the input's
    // mute; error when the mute cannot be read.
    MeetingStatus fetchStatus() override;

    // Unmutes from onMute and mutes from offMute: offMute when done, error
    // when not. Any other `fromStatus` is returned as it is and nothing is set.
    MeetingStatus toggleMute(MeetingStatus fromStatus) override;

    bool needsSetup() override { return false; }

private:
    Microphone& microphone_;
    LineSink& out_;
    // The last mute set here is still standing: nobody unmuted since.
    bool mutedHere_ = false;
};

} // namespace hg
