#pragma once

#include "platform/Accessibility.hpp"
#include "platform/RunningApplications.hpp"

#include <memory>
#include <string>

namespace hg::test {

// A desktop with one meeting application that acts like the Zoom client,
// known as "us.zoom.xos". The accessibility contract tests run the same cases
// against every world: the in-memory fake and the real AT-SPI desktop with
// the fixture application.
class MeetingWorld {
public:
    virtual ~MeetingWorld() = default;

    virtual Accessibility& accessibility() = 0;
    virtual RunningApplications& runningApplications() = 0;
    [[nodiscard]] virtual ProcessId appPid() const = 0;

    // A command to the application, as its own user would give it: "join",
    // "join muted", "leave", "mute", "unmute", "disable" (the mute item),
    // "both" (both mute items shown). Returns the application's state text
    // afterwards ("noMeeting", "muted", "unmuted", plus " disabled", " both").
    virtual std::string command(const std::string& text) = 0;
    // The state after the last change, waiting for a change the application
    // was just asked for from outside (a press).
    virtual std::string awaitState() = 0;

    // The application dies (and is reaped).
    virtual void kill() = 0;
    // The application stops answering, and answers again.
    virtual void freeze() = 0;
    virtual void thaw() = 0;
};

// The fake world: FakeAccessibility with a tree shaped like a Qt Widgets
// application's (application, frame, menu bar, menu items with popup menus).
std::unique_ptr<MeetingWorld> makeFakeWorld();

// The real world: the fixture application on a private desktop, read through
// AtspiAccessibility. Null, with the reason, when it cannot run here.
std::unique_ptr<MeetingWorld> makeAtspiWorld(std::string& whyNot);

} // namespace hg::test
