#pragma once

#include "apps/InputMuteKeeper.hpp"
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
// A mute this adapter puts on the input goes into `keeper`'s book and lasts
// as long as the recording: once nothing records from that input any more it
// is lifted, so that the next call, which may be one the program drives
// through the app's own mute, does not start silent. The keeper follows a
// muted call to a new default input.
class MicrophoneMeetingApp final : public MeetingApp {
public:
    MicrophoneMeetingApp(Microphone& microphone, InputMuteKeeper& keeper, LineSink& out);

    static constexpr std::string_view appName = "Microphone";
    [[nodiscard]] std::string name() const override { return std::string(appName); }

    // notRunning while nothing records from the default input (or there is
    // none); onMute or offMute from its mute; error when either cannot be
    // read. Settles the keeper's book first.
    MeetingStatus fetchStatus() override;

    // Unmutes from onMute and mutes from offMute: offMute when done, error
    // when not. Any other `fromStatus` is returned as it is and nothing is set.
    MeetingStatus toggleMute(MeetingStatus fromStatus) override;

    bool needsSetup() override { return false; }

private:
    Microphone& microphone_;
    InputMuteKeeper& keeper_;
    LineSink& out_;
};

} // namespace hg
