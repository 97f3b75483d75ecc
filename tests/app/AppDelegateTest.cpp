// The delegate's own decisions, on fakes: what it builds at launch, the window
// table, reuse of windows, the choices of the setup row and the event-tap
// reactions to trust. The stories a user sees end to end are scenario tests.
#include "app/AppDelegate.hpp"

#include "app/LaunchAtLogin.hpp"
#include "core/UserData.hpp"
#include "core/UserPrefs.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/HotkeyRecorder.hpp"
#include "menu/GremlinMenu.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeAccessibility.hpp"
#include "platform/fake/FakeApplication.hpp"
#include "platform/fake/FakeClock.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeFileSystem.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeLocalKeyMonitor.hpp"
#include "platform/fake/FakeLoginItems.hpp"
#include "platform/fake/FakeProcessRunner.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/fake/FakeStatusItem.hpp"
#include "platform/fake/FakeTimers.hpp"
#include "platform/fake/FakeUpdater.hpp"
#include "platform/fake/FakeUserDefaults.hpp"
#include "platform/fake/FakeWindows.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Lines = std::vector<std::string>;

class AppDelegateTest : public ::testing::Test {
protected:
    void launch(bool trusted) {
        accessibility.setTrusted(trusted);
        eventTap.installable = trusted;
        app.startUp();
    }

    // Tuple running without its tool: it needs setup.
    void startTupleWithoutTool() { running.add(std::string("app.tuple.app"), 42); }

    const FakeWindows::Window& window(std::optional<WindowId> id) {
        EXPECT_TRUE(id.has_value());
        const auto* found = windows.find(id.value_or(0));
        EXPECT_NE(found, nullptr);
        static const FakeWindows::Window none;
        return found != nullptr ? *found : none;
    }

    FakeClock clock;
    FakeTimers timers{clock};
    BufferLineSink out;
    FakeUserDefaults defaults;
    FakeStatusItem statusItem;
    FakeWindows windows;
    FakeApplication application;
    FakeAccessibility accessibility;
    FakeRunningApplications running;
    FakeFileSystem files;
    FakeProcessRunner processes;
    FakeEventTap eventTap;
    FakeKeyboardLayout layout;
    FakeLocalKeyMonitor localKeys;
    FakeLoginItems loginItems;
    FakeUnifiedLog unifiedLog;
    FakeUpdater updater;
    Platform platform{clock,       timers,        out,        defaults,   statusItem, windows,
                      application, accessibility, running,    files,      processes,  eventTap,
                      layout,      localKeys,     loginItems, unifiedLog, updater};
    AppDelegate app{platform};
};

TEST_F(AppDelegateTest, LaunchWithoutTrustOpensTheAccessibilityWindowAndStillBindsTheShortcut) {
    launch(false);
    EXPECT_EQ(out.lines(), (Lines{"setup binding...",
                                  "Failed to create event tap — check Accessibility permissions",
                                  "Do we have a monitor:  YES", "Starting watcher"}));
    EXPECT_EQ(updater.startCount(), 1);
    EXPECT_EQ(statusItem.image(), "NoMeetingIcon");
    ASSERT_NE(app.userData(), nullptr);
    EXPECT_EQ(app.userData()->statusHistory(),
              (std::vector<StatusSet>{{0, MeetingStatus::error, MeetingStatus::error, false}}));
    EXPECT_EQ(windows.frontOrder(), (std::vector<WindowId>{*app.axSetupWindow()}));
    EXPECT_EQ(application.activationCount(), 1);
    ASSERT_EQ(app.meetingApps().size(), 2U);
    EXPECT_EQ(app.meetingApps()[0]->name(), "Zoom");
    EXPECT_EQ(app.meetingApps()[1]->name(), "Tuple");
    EXPECT_EQ(timers.activeCount(), 1U);
}

TEST_F(AppDelegateTest, LaunchWithTrustInstallsTheTapAndOpensNoWindow) {
    launch(true);
    EXPECT_TRUE(eventTap.isInstalled());
    EXPECT_TRUE(windows.windows().empty());
    EXPECT_TRUE(app.userData()->hasAXAccess());
}

TEST_F(AppDelegateTest, TrustChangesInstallReplaceAndRemoveTheTap) {
    launch(false);
    out.clear();
    eventTap.installable = true;
    app.axChanged(true);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED true", "reset event tap"}));
    EXPECT_TRUE(eventTap.isInstalled());
    app.axChanged(true);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED true", "reset event tap"}));
    EXPECT_EQ(eventTap.installCount(), 2); // replaced, not added
    app.axChanged(false);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED false", "Del evvent tap"}));
    EXPECT_FALSE(eventTap.isInstalled());
    EXPECT_FALSE(app.hotkeyMonitor()->isRunning());
}

TEST_F(AppDelegateTest, TrustReportedBeforeAnyBindingMakesTheFirstOne) {
    AppDelegate fresh(platform);
    fresh.axChanged(false);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED false"}));
    fresh.axChanged(true);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED true", "configure event tap first time",
                                 "setup binding...", "Do we have a monitor:  YES"}));
    EXPECT_NE(fresh.hotkeyMonitor(), nullptr);
}

TEST_F(AppDelegateTest, EveryWindowFollowsTheWindowTable) {
    launch(true);
    startTupleWithoutTool();
    app.showAXSetupWindow();
    app.showSetupWindow(*app.meetingApps()[1]);
    app.showSetupWindow(*app.meetingApps()[0]);
    app.showPrefsWindow();
    app.showAboutWindow();
    app.showDebugWindow();
    struct Row {
        std::optional<std::string> title;
        int width, height;
        std::uint32_t style;
        std::string autosave;
        bool panel;
    };
    const std::vector<Row> expected = {
        {"HushGremlin Accessibility", 560, 620, 0x8007, "AX Setup Window", false},
        {"HushGremlin - Tuple CLI", 500, 350, 0x8007, "Tuple Setup Window", false},
        {"Zoom Setup", 500, 350, 0x8007, "Zoom Setup Window", false},
        {"Hush Gremlin Preferences", 300, 200, 0x7, "HG Prefs", false},
        {"About Hush Gremlin", 300, 500, 0x8007, "HG About", false},
        {std::nullopt, 480, 300, 0x808F, "Main Window", true},
    };
    ASSERT_EQ(windows.windows().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& description = windows.windows()[i].description;
        EXPECT_EQ(description.title, expected[i].title) << i;
        EXPECT_EQ(description.contentWidth, expected[i].width) << i;
        EXPECT_EQ(description.contentHeight, expected[i].height) << i;
        EXPECT_EQ(description.styleMask, expected[i].style) << i;
        EXPECT_EQ(description.frameAutosaveName, expected[i].autosave) << i;
        EXPECT_EQ(description.panel, expected[i].panel) << i;
    }
    EXPECT_EQ(std::get<AppSetupContent>(windows.windows()[1].description.content).view.kind,
              SetupView::Kind::tupleCLI);
    EXPECT_EQ(std::get<AppSetupContent>(windows.windows()[2].description.content).view.kind,
              SetupView::Kind::empty);
    EXPECT_EQ(std::get<AboutContent>(windows.windows()[4].description.content).version, HG_VERSION);
    EXPECT_EQ(std::get<DebugContent>(windows.windows()[5].description.content).userData, app.userData());
    // All but the debug panel bring the application forward first.
    EXPECT_EQ(application.activationCount(), 5);
}

TEST_F(AppDelegateTest, WindowsAreBuiltOnceAndBroughtForwardAgain) {
    launch(true);
    app.showPrefsWindow();
    UserPrefs* prefs = app.userPrefs();
    HotkeyRecorder* recorder = app.hotkeyRecorder();
    const WindowId id = *app.prefsWindow();
    windows.close(id);
    app.showPrefsWindow();
    app.showPrefsWindow();
    EXPECT_EQ(windows.windows().size(), 1U);
    EXPECT_EQ(*app.prefsWindow(), id);
    EXPECT_EQ(app.userPrefs(), prefs);
    EXPECT_EQ(app.hotkeyRecorder(), recorder);
    EXPECT_TRUE(window(id).shown);
    EXPECT_EQ(window(id).frontCount, 3);
    EXPECT_EQ(application.activationCount(), 3);

    startTupleWithoutTool();
    app.showSetupWindow(*app.meetingApps()[1]);
    app.showSetupWindow(*app.meetingApps()[1]);
    EXPECT_EQ(app.setupWindows().size(), 1U);
    EXPECT_EQ(windows.windows().size(), 2U);
}

TEST_F(AppDelegateTest, PreferencesContentIsWiredToTheUpdaterAndTheAboutWindow) {
    launch(true);
    app.showPrefsWindow();
    const auto content = std::get<PreferencesContent>(window(app.prefsWindow()).description.content);
    EXPECT_EQ(content.prefs, app.userPrefs());
    EXPECT_EQ(content.recorder, app.hotkeyRecorder());
    EXPECT_EQ(content.launchAtLogin, app.launchAtLogin());
    content.prefs->checkForUpdatesCallback()();
    EXPECT_EQ(updater.checkCount(), 1);
    content.showAbout();
    ASSERT_TRUE(app.aboutWindow().has_value());
    EXPECT_EQ(windows.frontOrder().front(), *app.aboutWindow());
    // Building the preferences wrote the mute-on-join defaults.
    EXPECT_TRUE(defaults.hasObject("muteOnJoin_Zoom"));
}

TEST_F(AppDelegateTest, TheAccessibilityButtonPromptsThenClosesTheWindow) {
    launch(false);
    const auto content =
        std::get<AccessibilitySetupContent>(window(app.axSetupWindow()).description.content);
    content.promptAction();
    EXPECT_EQ(accessibility.promptCount(), 1);
    EXPECT_FALSE(window(app.axSetupWindow()).shown);
}

TEST_F(AppDelegateTest, TheSetupWindowsCloseActionClosesItsOwnWindow) {
    launch(true);
    startTupleWithoutTool();
    app.showSetupWindow(*app.meetingApps()[1]);
    const WindowId id = app.setupWindows().at("Tuple");
    std::get<AppSetupContent>(window(id).description.content).view.closeAction();
    EXPECT_FALSE(window(id).shown);
}

TEST_F(AppDelegateTest, TheSetupRowOpensWhatIsMissing) {
    launch(true);
    app.handleAXError(); // nothing needs setup
    EXPECT_TRUE(windows.windows().empty());

    startTupleWithoutTool();
    app.handleAXError();
    ASSERT_EQ(windows.frontOrder().size(), 1U);
    EXPECT_EQ(window(windows.frontOrder().front()).description.title, "HushGremlin - Tuple CLI");

    accessibility.setTrusted(false); // trust comes first, whatever else is missing
    app.handleAXError();
    EXPECT_EQ(windows.frontOrder().front(), *app.axSetupWindow());
}

TEST_F(AppDelegateTest, MenuRowsReachTheirActions) {
    launch(true);
    bool terminated = false;
    application.onTerminate = [&] {
        app.applicationWillTerminate();
        terminated = true;
    };
    updater.reportValidUpdate();
    EXPECT_TRUE(app.gremlinBarItem()->hasUpdate());
    auto& menu = *app.gremlinBarItem();
    menu.rowChosen(MenuAction::checkUpdate);
    EXPECT_EQ(updater.checkCount(), 1);
    menu.rowChosen(MenuAction::openPrefs);
    EXPECT_TRUE(app.prefsWindow().has_value());
    menu.rowChosen(MenuAction::debugView);
    EXPECT_TRUE(app.debugWindow().has_value());
    out.clear();
    menu.rowChosen(MenuAction::quit);
    EXPECT_TRUE(terminated);
    EXPECT_EQ(out.lines(), (Lines{"Goodbye cruel world!"}));
}

TEST_F(AppDelegateTest, TheUpdateCallbackOutlivingTheDelegateDoesNothing) {
    {
        AppDelegate shortLived(platform);
        shortLived.startUp();
    }
    EXPECT_NO_FATAL_FAILURE(updater.reportValidUpdate());
}

} // namespace
} // namespace hg
