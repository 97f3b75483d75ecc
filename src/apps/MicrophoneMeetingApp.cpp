#include "apps/MicrophoneMeetingApp.hpp"

#include <string>

namespace hg {

MicrophoneMeetingApp::MicrophoneMeetingApp(Microphone& microphone, InputMuteKeeper& keeper,
                                           LineSink& out)
    : microphone_(microphone), keeper_(keeper), out_(out) {}

MeetingStatus MicrophoneMeetingApp::fetchStatus() {
    keeper_.settle();
    const std::string input = microphone_.defaultInput();
    if (input.empty()) {
        return MeetingStatus::notRunning;
    }
    const auto recording = microphone_.isRecording(input);
    if (!recording) {
        return MeetingStatus::error;
    }
    if (!*recording) {
        return MeetingStatus::notRunning;
    }
    const auto muted = microphone_.isMuted(input);
    if (!muted) {
        return MeetingStatus::error;
    }
    if (!*muted) {
        // Unmuted elsewhere: no mute of ours stands on it any more.
        keeper_.forget(input);
    }
    return *muted ? MeetingStatus::onMute : MeetingStatus::offMute;
}

MeetingStatus MicrophoneMeetingApp::toggleMute(MeetingStatus fromStatus) {
    out_.line("Microphone toggleMute: fromStatus=" + std::string(toString(fromStatus)));
    if (!isInMeeting(fromStatus)) {
        return fromStatus;
    }
    const bool mute = fromStatus == MeetingStatus::offMute;
    const std::string input = microphone_.defaultInput();
    if (!microphone_.setMuted(input, mute)) {
        out_.line(mute ? "Microphone: could not mute the input"
                       : "Microphone: could not unmute the input");
        return MeetingStatus::error;
    }
    if (mute) {
        keeper_.remember(input);
    } else {
        keeper_.forget(input);
    }
    return MeetingStatus::offMute;
}

} // namespace hg
