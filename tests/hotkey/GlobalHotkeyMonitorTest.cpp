#include "hotkey/GlobalHotkeyMonitor.hpp"

#include "KeyEvents.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeEventTap.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "hotkey/DoubleTap.hpp"
#include "ports/ShortcutEvents.hpp"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace hg {
namespace {

using namespace hg::test;

constexpr auto pass = TapDecision::pass;
constexpr auto removed = TapDecision::remove;

// A scenario is a line of events, one token each: a key, then + (press), -
// (release) or * (auto-repeat), then what the monitor must do with it: p pass
// it, D remove it and report the press, U remove it and report the release.
// Modifier keys and caps lock send flags-changed events carrying every flag
// then set; other keys send key events with those flags.
struct NamedKey {
    std::string_view name;
    std::int64_t code;
    std::uint64_t flag;
};
constexpr NamedKey namedKeys[] = {
    {"fn", key::fn, fnb},     {"ctl", key::control, ctl},
    {"rctl", 62, ctl},        {"opt", key::option, opt},
    {"ropt", 61, opt},        {"cmd", key::command, cmd},
    {"shf", key::shift, shf}, {"caps", key::capsLock, capsLockFlag},
    {"K", key::k, 0},         {"A", key::a, 0},
};

struct Rig {
    FakeUserDefaults defaults;
    FakeEventTap tap;
    BufferLineSink out;
    GlobalHotkeyMonitor monitor{tap, defaults, out};
    int downs = 0;
    int ups = 0;
    std::uint64_t held = 0;

    Rig() {
        monitor.onDown = [this] { ++downs; };
        monitor.onUp = [this] { ++ups; };
    }

    void play(const std::string& script) {
        std::istringstream tokens(script);
        for (std::string token; tokens >> token;) {
            SCOPED_TRACE(token);
            const char action = token[token.size() - 2];
            const char outcome = token.back();
            const auto k =
                std::ranges::find(namedKeys, token.substr(0, token.size() - 2), &NamedKey::name);
            ASSERT_NE(k, std::end(namedKeys));
            TapEvent event;
            if (k->flag != 0) {
                held = action == '+' ? held | k->flag : held & ~k->flag;
                event = flags(k->code, held);
            } else {
                event = action == '+'   ? down(k->code, held)
                        : action == '-' ? up(k->code, held)
                                        : repeat(k->code, held);
            }
            const int wantDowns = downs + (outcome == 'D' ? 1 : 0);
            const int wantUps = ups + (outcome == 'U' ? 1 : 0);
            EXPECT_EQ(tap.deliver(event), outcome == 'p' ? pass : removed);
            EXPECT_EQ(downs, wantDowns);
            EXPECT_EQ(ups, wantUps);
        }
    }
};

TEST(GlobalHotkeyMonitor, MatchesPressesAndReleases) {
    const Hotkey commandK{key::k, cmd};
    const Hotkey controlOption{Hotkey::noKey, ctl | opt};
    struct Scenario {
        const char* name;
        std::optional<Hotkey> stored; // nothing: empty store, the fn default
        const char* script;
    };
    const Scenario scenarios[] = {
        {"fn alone (default)", std::nullopt, "fn+D fn-U"},
        {"fn with caps lock on", std::nullopt, "caps+p fn+D fn-U caps-p"},
        {"fn while control is held", std::nullopt, "ctl+p fn+p fn-p ctl-p"},
        {"command-K, auto-repeat, command released first", commandK, "cmd+p K+D K*p cmd-p K-U"},
        {"command-shift-K does not match command-K", commandK, "cmd+p shf+p K+p K-p"},
        {"K without command, and a release never pressed", commandK, "K+p K-p"},
        {"K held since before the start, repeating", commandK, "cmd+p K*p K-p"},
        {"stored extra bits are ignored by matching", Hotkey{key::k, cmd | 0x1}, "cmd+p K+D K-U"},
        {"control then option, release control", controlOption, "ctl+p opt+D ctl-U opt-p"},
        {"option then control, right keys", controlOption, "ropt+p rctl+D ropt-U rctl-p"},
        {"another key, and K again, while command-K is held", commandK,
         "cmd+p K+D A+p A-p K+p K-U cmd-p"},
        {"other keys while control-option is held", controlOption,
         "ctl+p opt+D A+p A-p shf+p shf-p opt-U ctl-p"},
        {"caps lock always passes, and the None shortcut never fires", Hotkey{Hotkey::noKey, 0},
         "caps+p caps-p fn+p fn-p A+p A-p"},
    };
    for (const auto& scenario : scenarios) {
        SCOPED_TRACE(scenario.name);
        Rig rig;
        if (scenario.stored) {
            scenario.stored->save(rig.defaults);
        }
        rig.monitor.start();
        rig.play(scenario.script);
        EXPECT_TRUE(rig.out.lines().empty());
    }
}

TEST(GlobalHotkeyMonitor, AShortcutPressedAsAWholeMatchesWhateverItsKind) {
    for (const Hotkey& stored : {Hotkey{key::k, cmd | shf}, Hotkey{Hotkey::noKey, ctl | opt},
                                 Hotkey{Hotkey::noKey, cmd | fnb}, Hotkey::defaultHotkey()}) {
        SCOPED_TRACE(stored.toJson());
        Rig rig;
        stored.save(rig.defaults);
        rig.monitor.start();
        const auto events = ShortcutEvents::of(stored);
        ASSERT_TRUE(events.has_value());
        EXPECT_EQ(rig.tap.deliver(events->press), removed);
        EXPECT_EQ(rig.tap.deliver(events->release), removed);
        EXPECT_EQ(rig.downs, 1);
        EXPECT_EQ(rig.ups, 1);
    }
    EXPECT_FALSE(ShortcutEvents::of(Hotkey{Hotkey::noKey, 0}).has_value());
}

TEST(GlobalHotkeyMonitor, OtherEventTypesAndKeyCodesOutside16BitsPass) {
    Rig rig;
    Hotkey{key::k, cmd}.save(rig.defaults);
    rig.monitor.start();
    EXPECT_EQ(rig.tap.deliver(TapEvent{1, key::k, cmd, 0}), pass);
    EXPECT_EQ(rig.tap.deliver(down(0x10000 + key::k, cmd)), pass) << "would truncate to K";
    EXPECT_EQ(rig.tap.deliver(down(-1, cmd)), pass);
}

TEST(GlobalHotkeyMonitor, StartsStopsAndKeepsTheTapEnabled) {
    auto rig = std::make_unique<Rig>();
    rig->tap.installable = false; // no Accessibility trust yet
    rig->monitor.start();
    rig->monitor.start();
    const std::string line =
        "Failed to create event tap \xE2\x80\x94 check Accessibility permissions";
    EXPECT_EQ(rig->out.lines(), (std::vector<std::string>{line, line}));
    EXPECT_FALSE(rig->monitor.isRunning());
    EXPECT_EQ(rig->tap.deliver(flags(key::fn, fnb)), std::nullopt);

    rig->tap.installable = true;
    rig->monitor.start();
    rig->monitor.start();
    EXPECT_TRUE(rig->monitor.isRunning());
    for (const auto type : {tapevent::disabledByTimeout, tapevent::disabledByUserInput}) {
        EXPECT_EQ(rig->tap.deliver(TapEvent{type, 0, 0, 0}), pass);
        EXPECT_TRUE(rig->tap.isEnabled());
    }
    // Trust revoked meanwhile: the tap the system turned off stays off.
    rig->monitor.isTrusted = [] { return false; };
    EXPECT_EQ(rig->tap.deliver(TapEvent{tapevent::disabledByTimeout, 0, 0, 0}), pass);
    EXPECT_FALSE(rig->tap.isEnabled());
    rig->monitor.isTrusted = [] { return true; };
    EXPECT_EQ(rig->tap.deliver(TapEvent{tapevent::disabledByTimeout, 0, 0, 0}), pass);
    EXPECT_TRUE(rig->tap.isEnabled());
    rig->play("fn+D");

    // A press held across a restart is still released.
    rig->monitor.stop();
    rig->monitor.stop();
    EXPECT_FALSE(rig->monitor.isRunning());
    EXPECT_FALSE(rig->tap.isInstalled());
    rig->monitor.start();
    EXPECT_EQ(rig->monitor.downHotkey(), (Hotkey{Hotkey::noKey, fnb}));
    rig->monitor.onUp = nullptr; // the actions are optional
    EXPECT_EQ(rig->tap.deliver(flags(key::fn, 0)), removed);
    EXPECT_EQ(rig->monitor.downHotkey(), std::nullopt);

    // The tap calls into the monitor, so the monitor takes it away with it.
    bool installed = true;
    rig->tap.onInstalledChanged = [&](bool now) { installed = now; };
    rig.reset();
    EXPECT_FALSE(installed);
}

TEST(GlobalHotkeyMonitor, TheDecisionReturnsBeforeTheActionRuns) {
    // A toggle may wait a second for another application; the key event that
    // set it off must not wait with it.
    Rig rig;
    rig.monitor.start();
    std::vector<std::string> seen;
    const auto slowAction = [&](const char* name) {
        return [&seen, &rig, name] {
            seen.push_back(std::string(name) + " after " +
                           std::to_string(rig.tap.removedEvents().size()) + " removed");
        };
    };
    rig.monitor.onDown = slowAction("down");
    rig.monitor.onUp = slowAction("up");
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, fnb)), removed);
    EXPECT_EQ(rig.tap.deliver(flags(key::fn, 0)), removed);
    EXPECT_EQ(seen, (std::vector<std::string>{"down after 1 removed", "up after 2 removed"}));
}

TEST(GlobalHotkeyMonitor, ReleaseMatchesTheShortcutStoredAtReleaseTime) {
    Rig rig;
    Hotkey{key::k, cmd}.save(rig.defaults);
    rig.monitor.start();
    rig.play("cmd+p K+D");
    EXPECT_EQ(rig.monitor.downHotkey(), (Hotkey{key::k, cmd}));
    Hotkey::defaultHotkey().save(rig.defaults); // recorded while K is held
    rig.play("K-p fn+p fn-U");
}

TEST(KeystrokePrivacy, TypingPrintsNothingAboutTheKeysTyped) {
    Rig rig;
    FakeClock clock;
    DoubleTap doubleTap(clock, rig.out);
    // Wired the way the application wires it.
    rig.monitor.onDown = [&] { doubleTap.down(); };
    rig.monitor.onUp = [&] {
        doubleTap.up();
        if (doubleTap.state() == DoubleTap::State::doubleTapped) {
            doubleTap.reset();
        }
    };
    rig.monitor.start();
    const std::set<std::string> allowed = {
        "ERROR NOPE UP",           "ERROR, First Down Down", "ERROR, First Up Up",
        "ERROR, Second Down Down", "DOUBLE TAPPED DOWN???",  "DOUBLE TAPPED UP ERR",
    };
    std::map<char, std::uint16_t> keyFor; // on the US layout, upper case
    for (std::uint16_t code = 128; code-- > 0;) {
        if (const auto text = FakeKeyboardLayout().displayText(code); text && text->size() == 1) {
            keyFor[(*text)[0]] = code;
        }
    }

    const std::string sentence = "Hello, my PIN is 4711 and the code is Zq9. Bye";
    std::set<std::uint16_t> typed;
    int words = 0;
    std::size_t fnEvents = 0;
    for (const char c : sentence) {
        const std::uint16_t code = keyFor.at(static_cast<char>(std::toupper(c)));
        typed.insert(code);
        const std::size_t linesBefore = rig.out.lines().size();
        const std::uint64_t mods = std::isupper(c) != 0 ? shf : 0;
        if (mods != 0) {
            rig.tap.deliver(flags(key::shift, shf));
        }
        rig.tap.deliver(down(code, mods));
        rig.tap.deliver(repeat(code, mods));
        rig.tap.deliver(up(code, mods));
        if (mods != 0) {
            rig.tap.deliver(flags(key::shift, 0));
        }
        EXPECT_EQ(rig.out.lines().size(), linesBefore) << "a non-shortcut key printed something";
        clock.advanceSeconds(0.05);
        if (c == ' ') {
            // The shortcut between words, every other time a double tap, and
            // now and then a stray release straight to the detector.
            ++words;
            for (int i = 0; i < (words % 2 == 0 ? 2 : 1); ++i) {
                rig.tap.deliver(flags(key::fn, fnb));
                rig.tap.deliver(flags(key::fn, 0));
                fnEvents += 2;
            }
            if (words % 3 == 0) {
                doubleTap.up();
            }
        }
    }
    EXPECT_EQ(rig.tap.removedEvents().size(), fnEvents);
    ASSERT_FALSE(rig.out.lines().empty()) << "the stray releases should print";
    for (const auto& line : rig.out.lines()) {
        EXPECT_TRUE(allowed.contains(line)) << line;
        for (const auto code : typed) {
            EXPECT_EQ(line.find(std::to_string(code)), std::string::npos) << line;
        }
    }
}

} // namespace
} // namespace hg
