// The same cases against the in-memory fake and the AT-SPI backend with the
// fixture application written with Qt 6, GTK 3 and Qt 5: what the Zoom
// adapter reads and does must not depend on what stands behind the
// accessibility port.

#include "DesktopSession.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/ProcRunningApplications.hpp"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A desktop with one application that acts like the Zoom client.
struct MeetingWorld {
    virtual ~MeetingWorld() = default;
    // As its user would: "join", "join muted", "leave", "mute", "unmute",
    // "disable" (the mute item). Returns the state afterwards ("noMeeting",
    // "muted", "unmuted", and " disabled").
    virtual std::string command(const std::string& text) = 0;
    // The application dies; stops answering; answers again.
    virtual void kill() = 0;
    virtual void freeze() = 0;
    virtual void thaw() = 0;

    Accessibility* ax = nullptr;
    RunningApplications* apps = nullptr;
    ProcessId pid = 0;
};

// The fixture's tree on the fake, with the roles the AT-SPI backend reports.
class FakeWorld final : public MeetingWorld {
public:
    FakeWorld() {
        application_->menuBar = menuBar_;
        application_->add("AXFrame", "Meeting fixture")->add(menuBar_);
        menuBar_->onPress = [] { return ax::actionUnsupported; }; // no action to do
        menuBar_->add("AXMenuItem", "File")->add("AXMenu", "")->add("AXMenuItem", "Quit");
        auto popup = meetingItem_->add("AXMenu", "");
        popup->add(muteItem_);
        popup->add("AXMenuItem", "Leave Meeting");
        muteItem_->onPress = [this] {
            if (!enabled_) {
                return ax::cannotComplete; // what the backend answers for a disabled item
            }
            command(muted_ ? "unmute" : "mute");
            return ax::success;
        };
        ax_.setTrusted(true);
        ax_.setApplication(pid = 4100, application_);
        apps_.add("us.zoom.xos", pid);
        ax = &ax_;
        apps = &apps_;
    }

    std::string command(const std::string& text) override {
        const bool join = text.starts_with("join");
        if (join || text == "leave") {
            std::erase(menuBar_->children, meetingItem_);
            if (join) {
                menuBar_->children.push_back(meetingItem_);
            }
            inMeeting_ = join;
            muted_ = text == "join muted";
            enabled_ = true;
        } else if (text == "mute" || text == "unmute") {
            muted_ = text == "mute";
        } else if (text == "disable") {
            enabled_ = false;
        }
        muteItem_->title = muted_ ? "Unmute Audio" : "Mute Audio";
        return std::string(!inMeeting_ ? "noMeeting"
                           : muted_    ? "muted"
                                       : "unmuted") +
               (enabled_ ? "" : " disabled");
    }

    void kill() override {
        application_->markStale();
        ax_.removeApplication(pid);
        apps_.removePid(pid);
    }
    void freeze() override { ax_.setUnresponsive(true); }
    void thaw() override { ax_.setUnresponsive(false); }

private:
    FakeAccessibility ax_;
    FakeRunningApplications apps_;
    std::shared_ptr<FakeAXElement> application_ = FakeAXElement::make("AXApplication", "fixture");
    std::shared_ptr<FakeAXElement> menuBar_ = FakeAXElement::make("AXMenuBar", "");
    std::shared_ptr<FakeAXElement> meetingItem_ = FakeAXElement::make("AXMenuItem", "Meeting");
    std::shared_ptr<FakeAXElement> muteItem_ = FakeAXElement::make("AXMenuItem", "Mute Audio");
    bool inMeeting_ = false;
    bool muted_ = false;
    bool enabled_ = true;
};

// The fixture application on the private desktop, read through AT-SPI.
class AtspiWorld final : public MeetingWorld {
public:
    AtspiWorld(Toolkit toolkit, std::string& whyNot)
        : app_(FixtureApp::start(ax_, whyNot, toolkit)) {
        if (app_) {
            apps_ = std::make_unique<ProcRunningApplications>(ProcRunningApplications::Options{
                .identities = {AppIdentity{"us.zoom.xos", {app_->processName()}, {}}},
                .registeredProcesses = [this] { return ax_.registeredProcessIds(); },
                .rescanAfter = {}, // the cases kill the application between two reads
            });
            ax = &ax_;
            apps = apps_.get();
            pid = app_->pid();
        }
    }

    std::string command(const std::string& text) override { return app_->command(text); }
    void kill() override { app_->kill(ax_); }
    void freeze() override { app_->signal(SIGSTOP); }
    void thaw() override { app_->signal(SIGCONT); }

private:
    AtspiAccessibility ax_{AtspiAccessibility::Options{.alwaysOn = true}};
    std::unique_ptr<FixtureApp> app_;
    std::unique_ptr<ProcRunningApplications> apps_;
};

class AccessibilityContract : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (GetParam() == "fake") {
            world_ = std::make_unique<FakeWorld>();
        } else {
            makeQtApplication();
            std::string whyNot;
            const Toolkit toolkit = GetParam() == "gtk3"  ? Toolkit::gtk3
                                    : GetParam() == "qt5" ? Toolkit::qt5
                                                          : Toolkit::qt6;
            auto world = std::make_unique<AtspiWorld>(toolkit, whyNot);
            if (world->ax == nullptr) {
                GTEST_SKIP() << "AT-SPI backend not testable here: " << whyNot;
            }
            world_ = std::move(world);
        }
        zoom_ = std::make_unique<ZoomMeetingApp>(*world_->ax, *world_->apps, out_);
    }

    std::vector<std::string> lines() { return out_.take(); }

    BufferLineSink out_;
    std::unique_ptr<MeetingWorld> world_;
    std::unique_ptr<ZoomMeetingApp> zoom_;
};

TEST_P(AccessibilityContract, ReadsTheMeetingStateFromTheMenu) {
    const std::pair<const char*, MeetingStatus> steps[] = {
        {"state", MeetingStatus::noMeeting}, {"join", MeetingStatus::offMute},
        {"mute", MeetingStatus::onMute},     {"unmute", MeetingStatus::offMute},
        {"leave", MeetingStatus::noMeeting}, {"join muted", MeetingStatus::onMute},
    };
    for (const auto& [command, expected] : steps) {
        world_->command(command);
        EXPECT_EQ(zoom_->fetchStatus(), expected) << "after " << command;
    }
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_P(AccessibilityContract, PressingTheItemFlipsTheApplicationsMute) {
    world_->command("join");
    EXPECT_EQ(zoom_->toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    EXPECT_EQ(world_->command("state"), "muted");
    EXPECT_EQ(zoom_->fetchStatus(), MeetingStatus::onMute);
    EXPECT_THAT(lines(), ElementsAre("GETTING BUTTON"));

    // The cached item is pressed again without a lookup, whatever its title now.
    EXPECT_EQ(zoom_->toggleMute(MeetingStatus::onMute), MeetingStatus::offMute);
    EXPECT_EQ(world_->command("state"), "unmuted");
    EXPECT_EQ(zoom_->fetchStatus(), MeetingStatus::offMute);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_P(AccessibilityContract, ADisabledItemIsRefusedNotSilentlyPressed) {
    world_->command("join");
    world_->command("disable");
    EXPECT_EQ(zoom_->toggleMute(MeetingStatus::offMute), MeetingStatus::error);
    EXPECT_EQ(world_->command("state"), "unmuted disabled");
    EXPECT_EQ(zoom_->muteButton(), nullptr);
    EXPECT_THAT(lines(), ElementsAre("GETTING BUTTON", "CANT COMplete",
                                     "Unexpected TOGGLE error: HushGremlin.SwiftAXError"));
}

TEST_P(AccessibilityContract, TheTreeHasTheFixturesRolesAndRefusesWhatItCannotDo) {
    world_->command("join");
    Accessibility& ax = *world_->ax;
    const auto read = [&](const AXElementRef& element, const char* attribute) {
        const auto result = ax.copyAttributeValue(element, attribute);
        const auto* text = std::get_if<std::string>(&result.value);
        return text != nullptr ? *text : "read failed with " + std::to_string(result.error);
    };
    const auto firstChild = [&](const AXElementRef& element) {
        const auto result = ax.copyAttributeValue(element, "AXChildren");
        const auto* children = std::get_if<std::vector<AXElementRef>>(&result.value);
        return children != nullptr && !children->empty() ? children->front() : nullptr;
    };
    AXAccess access(ax, *world_->apps, out_);
    const AXElementRef application = ax.createApplication(world_->pid);
    EXPECT_EQ(read(application, "AXRole"), "AXApplication");
    EXPECT_EQ(read(firstChild(application), "AXRole"), "AXFrame");
    EXPECT_EQ(read(firstChild(application), "AXTitle"), "Meeting fixture");
    const AXElementRef menuBar = access.copyMenuBar(world_->pid);
    EXPECT_EQ(read(menuBar, "AXRole"), "AXMenuBar");
    const AXElementRef meeting = access.findChild(menuBar, "Meeting", false);
    ASSERT_NE(meeting, nullptr);
    EXPECT_EQ(read(meeting, "AXRole"), "AXMenuItem") << "whatever role the toolkit gives it";

    EXPECT_NO_THROW(access.press(menuBar)) << "an element without an action counts as pressed";
    EXPECT_EQ(ax.performAction(menuBar, "AXShowMenu"), ax::actionUnsupported);
    EXPECT_EQ(ax.copyAttributeValue(menuBar, "AXSize").error, ax::attributeUnsupported);
    const auto foreign = std::make_shared<AXElement>();
    EXPECT_EQ(ax.copyAttributeValue(foreign, "AXTitle").error, ax::illegalArgument);
    EXPECT_EQ(ax.performAction(foreign, "AXPress"), ax::illegalArgument);
    // A process without an accessible application, as this test's own.
    try {
        (void)access.copyMenuBar(static_cast<ProcessId>(::getpid()));
        ADD_FAILURE() << "the test process has no accessible application";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::invalidUIElement);
    }
    EXPECT_THAT(lines(), ElementsAre("UNSUPPORTED", "WTFMATE"));
}

TEST_P(AccessibilityContract, AnApplicationKilledMidWalkInvalidatesItsElements) {
    world_->command("join");
    AXAccess access(*world_->ax, *world_->apps, out_);
    const AXElementRef menuBar = access.copyMenuBar(world_->pid);
    ASSERT_EQ(zoom_->toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    lines();

    world_->kill();
    try {
        (void)access.findChild(menuBar, "Meeting", false);
        ADD_FAILURE() << "the walk went on in a dead application";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::invalidUIElement);
    }
    EXPECT_THAT(lines(), ElementsAre("NODICE", "WTFMATE"));
    // The cached item is dead too: the toggle fails and forgets it.
    EXPECT_EQ(zoom_->toggleMute(MeetingStatus::onMute), MeetingStatus::error);
    EXPECT_EQ(zoom_->muteButton(), nullptr);
    EXPECT_THAT(lines(), ElementsAre("UNSUCCESS PRESSING",
                                     "Unexpected TOGGLE error: HushGremlin.SwiftAXError"));
    EXPECT_EQ(zoom_->fetchStatus(), MeetingStatus::notRunning);
}

TEST_P(AccessibilityContract, AStoppedApplicationCostsOneTimeOutAndRecovers) {
    world_->command("join muted");
    world_->freeze();
    EXPECT_EQ(zoom_->fetchStatus(), MeetingStatus::error);
    EXPECT_TRUE(zoom_->answeredLate()) << "a time-out is no reading, not a left meeting";
    EXPECT_THAT(lines(), ElementsAre("CANT COMplete",
                                     "Unexpected meeting AX error: HushGremlin.SwiftAXError"));
    world_->thaw();
    EXPECT_EQ(zoom_->fetchStatus(), MeetingStatus::onMute);
    EXPECT_FALSE(zoom_->answeredLate());
    EXPECT_THAT(lines(), IsEmpty());
}

// Menu bars that only the Qt 6 fixture builds.
class Qt6MenuBars : public AccessibilityContract {};

TEST_P(Qt6MenuBars, TheMenuBarOnScreenIsReadNotAHiddenTwin) {
    world_->command("twin");
    world_->command("join muted");
    // Read afresh, as the program does when it starts: the twin comes first.
    AtspiAccessibility ax{AtspiAccessibility::Options{.alwaysOn = true}};
    ZoomMeetingApp zoom(ax, *world_->apps, out_);
    EXPECT_EQ(zoom.fetchStatus(), MeetingStatus::onMute);
    EXPECT_EQ(zoom.toggleMute(MeetingStatus::onMute), MeetingStatus::offMute);
    EXPECT_EQ(world_->command("state"), "unmuted");
    EXPECT_THAT(lines(), ElementsAre("GETTING BUTTON"));
}

TEST_P(Qt6MenuBars, TheMeetingMenuIsFoundInAWindowThatOpensLater) {
    // The main window's menu bar is read first; the meeting then opens a
    // window of its own, with the "Meeting" menu in its own menu bar.
    AtspiAccessibility ax{AtspiAccessibility::Options{.alwaysOn = true}};
    ZoomMeetingApp zoom(ax, *world_->apps, out_);
    EXPECT_EQ(zoom.fetchStatus(), MeetingStatus::noMeeting);
    world_->command("meeting window");
    world_->command("join muted");
    EXPECT_EQ(zoom.fetchStatus(), MeetingStatus::onMute);
    EXPECT_EQ(zoom.toggleMute(MeetingStatus::onMute), MeetingStatus::offMute);
    EXPECT_EQ(world_->command("state"), "unmuted");
    world_->command("leave");
    EXPECT_EQ(zoom.fetchStatus(), MeetingStatus::noMeeting);
}

INSTANTIATE_TEST_SUITE_P(Backends, AccessibilityContract,
                         ::testing::Values("fake", "qt6", "gtk3", "qt5"),
                         [](const ::testing::TestParamInfo<std::string>& p) { return p.param; });
INSTANTIATE_TEST_SUITE_P(Backends, Qt6MenuBars, ::testing::Values("qt6"),
                         [](const ::testing::TestParamInfo<std::string>& p) { return p.param; });

} // namespace
} // namespace hg::test
