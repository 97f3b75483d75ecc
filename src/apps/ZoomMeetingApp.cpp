#include "apps/ZoomMeetingApp.hpp"

#include "apps/SwiftAXError.hpp"

#include <exception>
#include <string>

namespace hg {

namespace {

constexpr std::string_view bundleID = "us.zoom.xos";
constexpr std::string_view meetingMenuTitle = "Meeting";
constexpr std::string_view muteTitle = "Mute Audio";
constexpr std::string_view unmuteTitle = "Unmute Audio";
constexpr std::string_view unreadableMenuLine = "Zoom: no item of the Meeting menu can be read";

} // namespace

ZoomMeetingApp::ZoomMeetingApp(Accessibility& accessibility, RunningApplications& applications,
                               LineSink& out)
    : access_(accessibility, applications, out), out_(out) {}

ZoomMeetingApp::MuteItems ZoomMeetingApp::findMuteItems(const AXElementRef& meetingItem) {
    MuteItems items;
    items.mute = access_.findChild(meetingItem, muteTitle, true);
    items.unmute = access_.findChild(meetingItem, unmuteTitle, true);
    return items;
}

MeetingStatus ZoomMeetingApp::fetchStatus() {
    answeredLate_ = false;
    const auto pid = access_.runningAppPID(bundleID);
    if (!pid) {
        return MeetingStatus::notRunning;
    }
    if (!access_.accessibility().isProcessTrusted(false)) {
        return MeetingStatus::setupError;
    }
    // std::exception rather than SwiftAXError alone: a backend failing in a
    // way of its own must not take the watcher down either. SwiftAXError's
    // text is "HushGremlin.SwiftAXError".
    try {
        const AXElementRef menuBar = access_.copyMenuBar(*pid);
        const AXElementRef meetingItem = access_.findChild(menuBar, meetingMenuTitle, false);
        if (meetingItem == nullptr) {
            reportedUnreadableMenu_ = false;
            return MeetingStatus::noMeeting;
        }
        const MuteItems items = findMuteItems(meetingItem);
        if (items.mute == nullptr && items.unmute == nullptr) {
            reportUnreadableMenu(meetingItem);
        } else {
            reportedUnreadableMenu_ = false;
        }
        if (items.mute != nullptr && items.unmute != nullptr) {
            out_.line("BOTH BUTTONS!");
            return MeetingStatus::offMute;
        }
        if (items.mute != nullptr) {
            return MeetingStatus::offMute;
        }
        if (items.unmute != nullptr) {
            return MeetingStatus::onMute;
        }
        return MeetingStatus::error;
    } catch (const SwiftAXError& e) {
        out_.line(std::string("Unexpected meeting AX error: ") + e.what());
        answeredLate_ = e.timedOut;
        return MeetingStatus::error;
    } catch (const std::exception& e) {
        out_.line(std::string("Unexpected meeting AX error: ") + e.what());
        return MeetingStatus::error;
    }
}

void ZoomMeetingApp::reportUnreadableMenu(const AXElementRef& meetingItem) {
    if (!reportedUnreadableMenu_ && !access_.holdsItems(meetingItem)) {
        out_.line(std::string(unreadableMenuLine));
        reportedUnreadableMenu_ = true;
    }
}

AXElementRef ZoomMeetingApp::findMuteButton() {
    const auto pid = access_.runningAppPID(bundleID);
    if (!pid) {
        return nullptr;
    }
    try {
        const AXElementRef menuBar = access_.copyMenuBar(*pid);
        const AXElementRef meetingItem = access_.findChild(menuBar, meetingMenuTitle, false);
        if (meetingItem == nullptr) {
            return nullptr;
        }
        MuteItems items = findMuteItems(meetingItem);
        if (items.mute != nullptr && items.unmute != nullptr) {
            out_.line("BOTH BUTTONS!");
            return nullptr;
        }
        return items.mute != nullptr ? std::move(items.mute) : std::move(items.unmute);
    } catch (const std::exception& e) {
        out_.line(std::string("Unexpected meeting GETTING AX error: ") + e.what());
        return nullptr;
    }
}

MeetingStatus ZoomMeetingApp::toggleMute(MeetingStatus /*fromStatus*/) {
    if (muteButton_ == nullptr) {
        out_.line("GETTING BUTTON");
        muteButton_ = findMuteButton();
        if (muteButton_ == nullptr) {
            out_.line("NO BUTTON");
            return MeetingStatus::error;
        }
    }
    try {
        access_.press(muteButton_);
        return MeetingStatus::offMute;
    } catch (const std::exception& e) {
        out_.line(std::string("Unexpected TOGGLE error: ") + e.what());
        muteButton_.reset();
        return MeetingStatus::error;
    }
}

} // namespace hg
