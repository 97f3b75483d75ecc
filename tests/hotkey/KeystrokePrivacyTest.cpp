#include "KeyEvents.hpp"
#include "hotkey/DoubleTap.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeClock.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <cctype>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace hg {
namespace {

using namespace hg::test;

// The key code that types `c` on the US layout, and whether shift is needed.
std::pair<std::uint16_t, bool> keyFor(const FakeKeyboardLayout& layout, char c) {
    const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (std::uint16_t code = 0; code < 128; ++code) {
        if (layout.displayText(code) == std::string(1, upper)) {
            return {code, std::isupper(static_cast<unsigned char>(c)) != 0};
        }
    }
    ADD_FAILURE() << "no key for " << c;
    return {0, false};
}

TEST(KeystrokePrivacy, TypingPrintsNothingAboutTheKeysTyped) {
    FakeClock clock;
    FakeUserDefaults defaults;
    FakeEventTap tap;
    FakeKeyboardLayout layout;
    BufferLineSink out;
    GlobalHotkeyMonitor monitor(tap, defaults, out);
    DoubleTap doubleTap(clock, out);
    // Wired the way the application wires it.
    monitor.onDown = [&] { doubleTap.down(); };
    monitor.onUp = [&] {
        doubleTap.up();
        if (doubleTap.state() == DoubleTap::State::doubleTapped) {
            doubleTap.reset();
        }
    };
    tap.installable = false;
    monitor.start(); // the failure line, before trust
    tap.installable = true;
    monitor.start();
    const std::set<std::string> allowed = {
        "Failed to create event tap \xE2\x80\x94 check Accessibility permissions",
        "ERROR NOPE UP",
        "ERROR, First Down Down",
        "ERROR, First Up Up",
        "ERROR, Second Down Down",
        "DOUBLE TAPPED DOWN???",
        "DOUBLE TAPPED UP ERR",
    };
    out.clear();

    const std::string sentence = "Hello, my PIN is 4711 and the code is Zq9. Bye";
    std::set<std::uint16_t> typed;
    int words = 0;
    std::size_t fnEvents = 0;
    for (const char c : sentence) {
        const auto [code, shifted] = keyFor(layout, c);
        typed.insert(code);
        const std::size_t linesBefore = out.lines().size();
        const std::uint64_t mods = shifted ? shf : 0;
        if (shifted) {
            tap.deliver(flags(key::shift, shf));
        }
        tap.deliver(down(code, mods));
        if (c == 'i') {
            tap.deliver(repeat(code, mods));
        }
        tap.deliver(up(code, mods));
        if (shifted) {
            tap.deliver(flags(key::shift, 0));
        }
        EXPECT_EQ(out.lines().size(), linesBefore) << "a non-shortcut key printed something";
        clock.advanceSeconds(0.05);
        if (c == ' ') {
            // The user taps the shortcut between words, every other time
            // twice (a double tap), and now and then a stray release reaches
            // the detector directly.
            ++words;
            const int taps = words % 2 == 0 ? 2 : 1;
            for (int i = 0; i < taps; ++i) {
                tap.deliver(flags(key::fn, fnb));
                tap.deliver(flags(key::fn, 0));
                fnEvents += 2;
            }
            if (words % 3 == 0) {
                doubleTap.up();
            }
        }
    }
    EXPECT_EQ(tap.removedEvents().size(), fnEvents);
    ASSERT_FALSE(out.lines().empty()) << "the stray releases should print";
    for (const auto& line : out.lines()) {
        EXPECT_TRUE(allowed.contains(line)) << line;
        for (const auto code : typed) {
            EXPECT_EQ(line.find(std::to_string(code)), std::string::npos) << line;
        }
    }
}

} // namespace
} // namespace hg
