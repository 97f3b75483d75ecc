#pragma once

#include "apps/AXAccess.hpp"
#include "core/MeetingApp.hpp"

namespace hg {

// Zoom (bundle "us.zoom.xos"), read and toggled through its menu bar: in a
// meeting its "Meeting" menu holds "Mute Audio" while the microphone is live
// and "Unmute Audio" while it is muted. Accessibility failures are printed
// and end as error (or as no button); nothing is thrown out of here.
class ZoomMeetingApp final : public MeetingApp {
public:
    ZoomMeetingApp(Accessibility& accessibility, RunningApplications& applications, LineSink& out);

    [[nodiscard]] std::string name() const override { return "Zoom"; }

    // Reads the menu afresh each time; never touches muteButton.
    MeetingStatus fetchStatus() override;

    // The last read ran into the accessibility time-out.
    [[nodiscard]] bool answeredLate() const override { return answeredLate_; }

    // Presses the cached mute item, looking it up first when none is cached.
    // offMute when pressed, whatever the direction; error otherwise.
    // `fromStatus` is not used.
    MeetingStatus toggleMute(MeetingStatus fromStatus) override;

    bool needsSetup() override { return false; }

    // The item to press for toggling: whichever of the two mute items the
    // "Meeting" menu holds; null when it holds neither or both, or on failure.
    AXElementRef findMuteButton();

    // The item the last toggle pressed. The watcher clears it when the
    // meeting situation changes, so that the next toggle looks it up again.
    [[nodiscard]] const AXElementRef& muteButton() const { return muteButton_; }
    void setMuteButton(AXElementRef button) { muteButton_ = std::move(button); }

private:
    struct MuteItems {
        AXElementRef mute;   // "Mute Audio": the microphone is live
        AXElementRef unmute; // "Unmute Audio": it is muted
    };
    // Both searches on the "Meeting" item, always both. Throws SwiftAXError.
    MuteItems findMuteItems(const AXElementRef& meetingItem);

    // Says once that the "Meeting" menu lists no item at all (a toolkit that
    // hides them all, or a menu bar that is not the one on screen).
    void reportUnreadableMenu(const AXElementRef& meetingItem);

    AXAccess access_;
    LineSink& out_;
    AXElementRef muteButton_;
    bool answeredLate_ = false;
    bool reportedUnreadableMenu_ = false;
};

} // namespace hg
