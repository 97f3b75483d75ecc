#include "hotkey/GlobalHotkeyMonitor.hpp"

#include "KeyEvents.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace hg {
namespace {

using namespace hg::test;

constexpr auto pass = TapDecision::pass;
constexpr auto removed = TapDecision::remove;

struct Rig {
    FakeUserDefaults defaults;
    FakeEventTap tap;
    BufferLineSink out;
    GlobalHotkeyMonitor monitor{tap, defaults, out};
    int downs = 0;
    int ups = 0;

    Rig() {
        monitor.onDown = [this] { ++downs; };
        monitor.onUp = [this] { ++ups; };
    }
    void store(Hotkey hotkey) { hotkey.save(defaults); }
};

struct Step {
    TapEvent event;
    TapDecision decision;
    int downs; // running totals after the step
    int ups;
};

struct Scenario {
    const char* name;
    std::optional<Hotkey> stored; // nothing: empty store, the fn default
    std::vector<Step> steps;
};

TEST(GlobalHotkeyMonitor, MatchesPressesAndReleases) {
    const Hotkey commandK{key::k, cmd};
    const Hotkey controlOption{Hotkey::noKey, ctl | opt};
    const Scenario scenarios[] = {
        {"fn alone (default)",
         std::nullopt,
         {{flags(key::fn, fnb), removed, 1, 0}, {flags(key::fn, 0), removed, 1, 1}}},
        {"fn with caps lock on and device bits still fires",
         std::nullopt,
         {{flags(key::fn, fnb | capsLockFlag | 0x100), removed, 1, 0},
          {flags(key::fn, capsLockFlag | 0x100), removed, 1, 1}}},
        {"fn while control is held",
         std::nullopt,
         {{flags(key::control, ctl), pass, 0, 0},
          {flags(key::fn, ctl | fnb), pass, 0, 0},
          {flags(key::fn, ctl), pass, 0, 0},
          {flags(key::control, 0), pass, 0, 0}}},
        {"command-K, auto-repeat, command released first",
         commandK,
         {{flags(key::command, cmd), pass, 0, 0},
          {down(key::k, cmd), removed, 1, 0},
          {repeat(key::k, cmd), pass, 1, 0},
          {repeat(key::k, cmd), pass, 1, 0},
          {flags(key::command, 0), pass, 1, 0},
          {up(key::k, 0), removed, 1, 1}}},
        {"command-shift-K does not match command-K",
         commandK,
         {{flags(key::command, cmd), pass, 0, 0},
          {flags(key::shift, cmd | shf), pass, 0, 0},
          {down(key::k, cmd | shf), pass, 0, 0},
          {up(key::k, cmd | shf), pass, 0, 0}}},
        {"K without command, and a release never pressed",
         commandK,
         {{down(key::k, 0), pass, 0, 0}, {up(key::k, 0), pass, 0, 0}}},
        {"stored extra bits are ignored by matching",
         Hotkey{key::k, cmd | 0x1},
         {{down(key::k, cmd), removed, 1, 0}, {up(key::k, cmd), removed, 1, 1}}},
        {"control then option, release control",
         controlOption,
         {{flags(key::control, ctl), pass, 0, 0},
          {flags(key::option, ctl | opt), removed, 1, 0},
          {flags(key::control, opt), removed, 1, 1},
          {flags(key::option, 0), pass, 1, 1}}},
        {"option then control (right keys), release option",
         controlOption,
         {{flags(61, opt), pass, 0, 0},
          {flags(62, ctl | opt), removed, 1, 0},
          {flags(61, ctl), removed, 1, 1},
          {flags(62, 0), pass, 1, 1}}},
        {"control-option-shift is not control-option",
         controlOption,
         {{flags(key::shift, shf), pass, 0, 0},
          {flags(key::control, shf | ctl), pass, 0, 0},
          {flags(key::option, shf | ctl | opt), pass, 0, 0}}},
        {"another key while command-K is held",
         commandK,
         {{down(key::k, cmd), removed, 1, 0},
          {down(key::a, cmd), pass, 1, 0},
          {up(key::a, cmd), pass, 1, 0},
          {down(key::k, cmd), pass, 1, 0},
          {up(key::k, cmd), removed, 1, 1}}},
        {"other keys while control-option is held",
         controlOption,
         {{flags(key::control, ctl), pass, 0, 0},
          {flags(key::option, ctl | opt), removed, 1, 0},
          {down(key::a, ctl | opt), pass, 1, 0},
          {up(key::a, ctl | opt), pass, 1, 0},
          {flags(key::shift, ctl | opt | shf), pass, 1, 0},
          {flags(key::shift, ctl | opt), pass, 1, 0},
          {flags(key::option, ctl), removed, 1, 1}}},
        {"caps lock always passes",
         Hotkey{Hotkey::noKey, 0},
         {{flags(key::capsLock, capsLockFlag), pass, 0, 0},
          {flags(key::capsLock, 0), pass, 0, 0},
          {down(key::capsLock, 0), pass, 0, 0}}},
        {"a modifier key never completes a shortcut with a main key",
         Hotkey{key::k, cmd},
         {{flags(key::command, cmd), pass, 0, 0}, {flags(key::command, 0), pass, 0, 0}}},
        {"the None shortcut never fires",
         Hotkey{Hotkey::noKey, 0},
         {{flags(key::fn, fnb), pass, 0, 0},
          {flags(key::fn, 0), pass, 0, 0},
          {down(key::a, 0), pass, 0, 0}}},
        {"key codes outside 16 bits pass, also when they would truncate to the key",
         commandK,
         {{down(0x10000 + key::k, cmd), pass, 0, 0},
          {down(-1, cmd), pass, 0, 0},
          {down(key::k, cmd), removed, 1, 0},
          {up(0x10000 + key::k, cmd), pass, 1, 0},
          {up(key::k, cmd), removed, 1, 1}}},
        {"other event types pass",
         commandK,
         {{TapEvent{1, key::k, cmd, 0}, pass, 0, 0}, {TapEvent{22, key::k, cmd, 0}, pass, 0, 0}}},
    };

    for (const auto& scenario : scenarios) {
        SCOPED_TRACE(scenario.name);
        Rig rig;
        if (scenario.stored) {
            rig.store(*scenario.stored);
        }
        rig.monitor.start();
        for (std::size_t i = 0; i < scenario.steps.size(); ++i) {
            const auto& step = scenario.steps[i];
            SCOPED_TRACE("step " + std::to_string(i));
            EXPECT_EQ(rig.tap.deliver(step.event), step.decision);
            EXPECT_EQ(rig.downs, step.downs);
            EXPECT_EQ(rig.ups, step.ups);
        }
        EXPECT_TRUE(rig.out.lines().empty());
    }
}

TEST(GlobalHotkeyMonitor, ReenablesTheTapWhenTheSystemDisablesIt) {
    Rig rig;
    rig.monitor.start();
    for (const auto type : {tapevent::disabledByTimeout, tapevent::disabledByUserInput}) {
        EXPECT_EQ(rig.tap.deliver(TapEvent{type, 0, 0, 0}), pass);
        EXPECT_TRUE(rig.tap.isEnabled());
    }
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, fnb)), removed);
    EXPECT_EQ(rig.downs, 1);
}

TEST(GlobalHotkeyMonitor, StartTwiceLeavesOneTapAndStopIsIdempotent) {
    Rig rig;
    rig.monitor.start();
    rig.monitor.start();
    EXPECT_TRUE(rig.monitor.isRunning());
    EXPECT_TRUE(rig.tap.isInstalled());
    EXPECT_TRUE(rig.tap.isEnabled());
    rig.tap.deliver(flags(key::fn, fnb));
    EXPECT_EQ(rig.downs, 1);

    rig.monitor.stop();
    EXPECT_FALSE(rig.monitor.isRunning());
    EXPECT_FALSE(rig.tap.isInstalled());
    rig.monitor.stop();
    EXPECT_FALSE(rig.tap.isInstalled());
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, 0)), std::nullopt);
}

TEST(GlobalHotkeyMonitor, RefusedTapPrintsTheFailureLineOncePerStart) {
    Rig rig;
    rig.tap.installable = false;
    rig.monitor.start();
    rig.monitor.start();
    const std::string line =
        "Failed to create event tap \xE2\x80\x94 check Accessibility permissions";
    EXPECT_EQ(rig.out.lines(), (std::vector<std::string>{line, line}));
    EXPECT_FALSE(rig.monitor.isRunning());
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, fnb)), std::nullopt);
    EXPECT_EQ(rig.downs + rig.ups, 0);

    // Trust granted later: the next start works.
    rig.tap.installable = true;
    rig.monitor.start();
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, fnb)), removed);
    EXPECT_EQ(rig.out.lines().size(), 2U);
}

TEST(GlobalHotkeyMonitor, ReleaseMatchesTheShortcutStoredAtReleaseTime) {
    Rig rig;
    rig.store(Hotkey{key::k, cmd});
    rig.monitor.start();
    EXPECT_EQ(rig.tap.deliver(down(key::k, cmd)), removed);
    ASSERT_TRUE(rig.monitor.downHotkey().has_value());
    EXPECT_EQ(*rig.monitor.downHotkey(), (Hotkey{key::k, cmd}));

    rig.store(Hotkey::defaultHotkey()); // recorded while K is held
    EXPECT_EQ(rig.tap.deliver(up(key::k, cmd)), pass);
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, fnb)), pass) << "still held";
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, 0)), removed);
    EXPECT_EQ(rig.downs, 1);
    EXPECT_EQ(rig.ups, 1);
    EXPECT_FALSE(rig.monitor.downHotkey().has_value());
}

TEST(GlobalHotkeyMonitor, HeldShortcutSurvivesARestartAndActionsAreOptional) {
    Rig rig;
    rig.monitor.onDown = nullptr;
    rig.monitor.start();
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, fnb)), removed);
    rig.monitor.stop();
    rig.monitor.start();
    ASSERT_TRUE(rig.monitor.downHotkey().has_value());
    EXPECT_EQ(*rig.monitor.downHotkey(), (Hotkey{Hotkey::noKey, fnb}));
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, 0)), removed);
    EXPECT_EQ(rig.ups, 1);
}

TEST(GlobalHotkeyMonitor, DestructionRemovesTheTap) {
    FakeUserDefaults defaults;
    FakeEventTap tap;
    BufferLineSink out;
    {
        GlobalHotkeyMonitor monitor(tap, defaults, out);
        monitor.start();
        EXPECT_TRUE(tap.isInstalled());
    }
    EXPECT_FALSE(tap.isInstalled());
}

} // namespace
} // namespace hg
