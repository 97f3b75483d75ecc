#pragma once

#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "shells/sim/SimOutput.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace hg::sim {

// The simulated Zoom client: a process in the running-application list and
// its menu bar as an accessibility tree. Elements keep their identity while
// they stay (a pressed mute item changes its title in place); whatever goes
// away turns stale and fails every read and press with invalidUIElement.
class SimZoom {
public:
    static constexpr std::string_view bundleID = "us.zoom.xos";

    enum class Meeting : std::uint8_t { off, muted, unmuted, both, neither };

    // Observes presses on `accessibility` for the trace.
    SimZoom(FakeAccessibility& accessibility, FakeRunningApplications& applications,
            SimOutput& out);
    SimZoom(const SimZoom&) = delete;
    SimZoom& operator=(const SimZoom&) = delete;

    [[nodiscard]] bool isRunning() const { return application_ != nullptr; }
    [[nodiscard]] Meeting meeting() const { return meeting_; }

    // Starts (or restarts) Zoom as process `pid`, not in a meeting.
    void start(ProcessId pid);
    // Ends the process: every element goes stale.
    void stop();
    // Enters, changes or leaves the meeting, or puts back the mute items the
    // state calls for after a rename. Zoom must be running.
    void setMeeting(Meeting meeting);
    // While on, Zoom answers no accessibility call: each fails as timed out.
    // Zoom must be running; it answers again after a stop or a restart.
    void setUnresponsive(bool unresponsive) { accessibility_.setUnresponsive(unresponsive); }
    // Renames the first menu-bar item or menu item titled `oldTitle`, in
    // tree order. False when Zoom does not run or nothing has that title.
    bool rename(std::string_view oldTitle, const std::string& newTitle);

private:
    using Element = std::shared_ptr<FakeAXElement>;

    // A menu-bar item with its one menu holding `items`.
    static Element menuBarItem(const std::string& title, const std::vector<std::string>& items);
    Element muteItem(const std::string& title);
    void enterMeeting();
    void updateMuteItems();
    void press(FakeAXElement& item);

    FakeAccessibility& accessibility_;
    FakeRunningApplications& applications_;
    SimOutput& out_;

    ProcessId pid_ = 0;
    Element application_;
    Element menuBar_;
    Element meetingItem_;
    Element meetingMenu_;
    Element startVideo_;
    std::vector<Element> muteItems_;
    Meeting meeting_ = Meeting::off;
};

} // namespace hg::sim
