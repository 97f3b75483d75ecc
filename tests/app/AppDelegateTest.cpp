// The delegate's decisions that no scenario shows: reuse of windows, the
// setup row's priorities, the first binding made on a trust report, and
// callbacks outliving the delegate. The stories a user sees end to end are
// scenario tests.
#include "app/AppDelegate.hpp"

#include "app/RemoteControl.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeApplication.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeEventTap.hpp"
#include "backends/fake/FakeFileSystem.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeLocalKeyMonitor.hpp"
#include "backends/fake/FakeLoginItems.hpp"
#include "backends/fake/FakeMicrophone.hpp"
#include "backends/fake/FakeProcessRunner.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "backends/fake/FakeTimers.hpp"
#include "backends/fake/FakeUpdater.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "backends/fake/FakeWindows.hpp"
#include "core/UserData.hpp"
#include "core/UserPrefs.hpp"
#include "hotkey/GlobeKeyNote.hpp"
#include "hotkey/HotkeyRecorder.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using namespace std::chrono_literals;
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
    FakeMicrophone microphone;
    Platform platform{clock,       timers,        out,        defaults,   statusItem, windows,
                      application, accessibility, running,    files,      processes,  eventTap,
                      layout,      localKeys,     loginItems, unifiedLog, updater,    microphone};
    AppDelegate app{platform};
};

TEST_F(AppDelegateTest, TrustReportedBeforeAnyBindingMakesTheFirstOne) {
    AppDelegate fresh(platform);
    fresh.axChanged(false);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED false"}));
    fresh.axChanged(true);
    EXPECT_EQ(out.take(), (Lines{"AX ACQUIRED true", "configure event tap first time",
                                 "setup binding...", "Do we have a monitor:  YES"}));
    EXPECT_NE(fresh.hotkeyMonitor(), nullptr);
}

TEST_F(AppDelegateTest, WindowsAreBuiltOnceAndBroughtForwardAgain) {
    launch(true);
    app.showPrefsWindow();
    UserPrefs* prefs = app.userPrefs();
    const WindowId id = *app.prefsWindow();
    windows.close(id);
    app.showPrefsWindow();
    app.showPrefsWindow();
    EXPECT_EQ(windows.windows().size(), 1U);
    EXPECT_EQ(app.userPrefs(), prefs);
    EXPECT_TRUE(window(id).shown);
    EXPECT_EQ(window(id).frontCount, 3);

    startTupleWithoutTool();
    app.showSetupWindow(*app.meetingApps()[1]);
    app.showSetupWindow(*app.meetingApps()[1]);
    EXPECT_EQ(app.setupWindows().size(), 1U);
    EXPECT_EQ(windows.windows().size(), 2U);
}

TEST_F(AppDelegateTest, ASetupWindowIsSavedUnderItsAppAndItsCloseActionClosesIt) {
    launch(true);
    startTupleWithoutTool();
    app.showSetupWindow(*app.meetingApps()[1]);
    const WindowId id = app.setupWindows().at("Tuple");
    EXPECT_EQ(window(id).description.frameAutosaveName, "Tuple Setup Window");
    std::get<AppSetupContent>(window(id).description.content).view.closeAction();
    EXPECT_FALSE(window(id).shown);
}

TEST_F(AppDelegateTest, PreferencesLeadToTheAboutWindowWithTheVersion) {
    launch(true);
    app.showPrefsWindow();
    std::get<PreferencesContent>(window(app.prefsWindow()).description.content).showAbout();
    ASSERT_TRUE(app.aboutWindow().has_value());
    EXPECT_EQ(windows.frontOrder().front(), *app.aboutWindow());
    EXPECT_EQ(std::get<AboutContent>(window(app.aboutWindow()).description.content).version,
              HG_VERSION);

    // A bundle's own version wins over the one built in.
    application.packageVersionText = "7.1.2";
    AppDelegate bundled(platform);
    bundled.startUp();
    bundled.showAboutWindow();
    EXPECT_EQ(std::get<AboutContent>(window(bundled.aboutWindow()).description.content).version,
              "7.1.2");
}

TEST_F(AppDelegateTest, TheAccessibilityWindowWarnsOfTheGlobeKeyOnlyWhenItActsOnTheShortcut) {
    layout.globeKeyActs = true;
    launch(false);
    EXPECT_EQ(std::get<AccessibilitySetupContent>(window(app.axSetupWindow()).description.content)
                  .globeKeyNote,
              globeKeyNoteText);

    Hotkey{40, modifier::command}.save(defaults);
    AppDelegate commandK(platform);
    commandK.startUp();
    EXPECT_EQ(
        std::get<AccessibilitySetupContent>(window(commandK.axSetupWindow()).description.content)
            .globeKeyNote,
        "");
}

TEST_F(AppDelegateTest, WithUpdatesOffPreferencesSayWhyInsteadOfChecking) {
    launch(true);
    app.showPrefsWindow();
    EXPECT_EQ(app.userPrefs()->updatesOffReason(), std::nullopt);

    updater.off = "Updates are off: no update feed is set";
    AppDelegate off(platform);
    off.startUp();
    off.showPrefsWindow();
    EXPECT_EQ(off.userPrefs()->updatesOffReason(), updater.off);
}

TEST_F(AppDelegateTest, WithoutFnTheFirstStartAloneAsksForAShortcut) {
    eventTap.functionKeySeen = false;
    launch(true);
    const auto& content =
        std::get<PreferencesContent>(window(app.prefsWindow()).description.content);
    EXPECT_EQ(content.notice, AppDelegate::noFunctionKeyNotice);
    EXPECT_TRUE(content.recorder->isRecording());

    AppDelegate secondStart{platform};
    secondStart.startUp();
    EXPECT_FALSE(secondStart.prefsWindow().has_value());

    // A shortcut stored before the first start: nothing to ask.
    defaults.removeObject(AppDelegate::askedForShortcutKey);
    Hotkey{40, 0x40000}.save(defaults);
    AppDelegate withShortcut{platform};
    withShortcut.startUp();
    EXPECT_FALSE(withShortcut.prefsWindow().has_value());
}

TEST_F(AppDelegateTest, TheSetupRowOpensNothingWhenAllIsSetUpAndTrustBeforeAnApp) {
    launch(true);
    app.handleAXError();
    EXPECT_TRUE(windows.windows().empty());

    startTupleWithoutTool();
    accessibility.setTrusted(false);
    app.handleAXError();
    EXPECT_EQ(windows.frontOrder(), std::vector<WindowId>{*app.axSetupWindow()});
}

TEST_F(AppDelegateTest, ScriptedPressesTakeTheShortcutsPathAndUnpairedOnesAreIgnored) {
    RemoteControl& remote = app.remoteControl();
    int announced = 0;
    const auto subscription = remote.statusWillChange().subscribe([&] { ++announced; });
    remote.press(1s);
    EXPECT_FALSE(remote.isPressed()) << "pressed before there was anything to press";
    launch(true);
    timers.advanceSeconds(1.0);
    ASSERT_TRUE(isWithoutMeeting(remote.status()));
    EXPECT_GT(announced, 0);
    out.take();

    remote.release(2s);
    remote.press(3s);
    remote.press(4s);
    EXPECT_EQ(statusItem.image(), "SideEyeIcon");
    remote.release(5s);
    remote.release(6s);
    EXPECT_EQ(statusItem.image(), "NoMeetingIcon");
    EXPECT_EQ(out.take(), Lines{}) << "the double-tap detector saw an unpaired press or release";

    remote.showDebugView();
    ASSERT_TRUE(app.debugWindow().has_value());
    EXPECT_EQ(windows.frontOrder().front(), *app.debugWindow());
}

// A call on the system microphone, muted: the one meeting app of the fakes
// that needs no accessibility tree.
class ScriptedCall : public AppDelegateTest {
protected:
    void SetUp() override {
        defaults.setBool(UserPrefs::microphoneKey, true);
        microphone.recording = true;
        microphone.muted = true;
        launch(true);
        timers.advanceSeconds(1.0);
        ASSERT_EQ(app.remoteControl().status(), MeetingStatus::onMute);
    }
    // Past the store's quiet time after a toggle.
    void settle() { timers.advanceSeconds(2.0); }
};

TEST_F(ScriptedCall, MuteAndUnmuteAskOnlyForAChangeAndSayWhenTheyCannot) {
    RemoteControl& remote = app.remoteControl();
    EXPECT_EQ(remote.setMuted(true), MuteResult::done);
    EXPECT_TRUE(microphone.requests().empty()) << "muting a muted call asks nothing";
    EXPECT_EQ(remote.setMuted(false), MuteResult::done);
    EXPECT_EQ(remote.setMuted(false), MuteResult::done);
    EXPECT_EQ(microphone.requests(), std::vector<bool>{false});
    EXPECT_EQ(remote.status(), MeetingStatus::offMute);
    settle();

    microphone.failing = true;
    EXPECT_EQ(remote.setMuted(true), MuteResult::refused);
    EXPECT_EQ(muteFailureLine(MuteResult::refused, true, remote.status()),
              "The meeting app did not mute (status offMute)");
    microphone.failing = false;
    microphone.recording = false;
    settle();
    EXPECT_EQ(remote.setMuted(true), MuteResult::noCall);
    EXPECT_EQ(muteFailureLine(MuteResult::noCall, false, remote.status()),
              "No call to unmute (status noMeeting)");
}

TEST_F(ScriptedCall, PressAndReleaseApplyInTheOrderTheyWereIssued) {
    RemoteControl& remote = app.remoteControl();
    // A quick tap whose release arrived first, even with the release's clock
    // read a little before the press's: both, press first.
    remote.release(1000ms);
    EXPECT_EQ(microphone.requests(), std::vector<bool>{});
    remote.press(1000ms + RemoteControl::issueSkew);
    EXPECT_EQ(microphone.requests(), (std::vector<bool>{false, true}));
    EXPECT_FALSE(remote.isPressed());
    settle();

    // The release of that tap, or its press, late: ignored.
    remote.release(1010ms);
    remote.press(900ms);
    EXPECT_FALSE(remote.isPressed());
    // A stray release is dropped by a press issued well after it.
    remote.release(2000ms);
    remote.press(3000ms);
    EXPECT_TRUE(remote.isPressed());
    EXPECT_EQ(remote.status(), MeetingStatus::offMute);
    remote.release(2500ms);
    EXPECT_TRUE(remote.isPressed()) << "a release issued well before the press it would end";
    // An explicit state ends the hold: the release does not undo it.
    EXPECT_EQ(remote.setMuted(true), MuteResult::done);
    EXPECT_FALSE(remote.isPressed());
    settle();
    remote.release(4000ms);
    EXPECT_EQ(remote.status(), MeetingStatus::onMute);
    EXPECT_TRUE(microphone.muted);
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
