#include "apps/MicrophoneMeetingApp.hpp"

#include <string>

namespace hg {

MicrophoneMeetingApp::MicrophoneMeetingApp(Microphone& microphone, LineSink& out)
    : microphone_(microphone), out_(out) {}

MeetingStatus MicrophoneMeetingApp::fetchStatus() {
    if (!microphone_.isInUse()) {
        if (mutedHere_) {
            mutedHere_ = false;
            out_.line("Microphone: nothing records any more, lifting the mute set during the call");
            if (!microphone_.setMuted(false)) {
                out_.line("Microphone: could not unmute the input");
            }
        }
        return MeetingStatus::notRunning;
    }
    const auto muted = microphone_.isMuted();
    if (!muted) {
        return MeetingStatus::error;
    }
    if (!*muted) {
        mutedHere_ = false;
    }
    return *muted ? MeetingStatus::onMute : MeetingStatus::offMute;
}

MeetingStatus MicrophoneMeetingApp::toggleMute(MeetingStatus fromStatus) {
    out_.line("Microphone toggleMute: fromStatus=" + std::string(toString(fromStatus)));
    if (!isInMeeting(fromStatus)) {
        return fromStatus;
    }
    const bool mute = fromStatus == MeetingStatus::offMute;
    if (!microphone_.setMuted(mute)) {
        out_.line(mute ? "Microphone: could not mute the input"
                       : "Microphone: could not unmute the input");
        return MeetingStatus::error;
    }
    mutedHere_ = mute;
    return MeetingStatus::offMute;
}

} // namespace hg
