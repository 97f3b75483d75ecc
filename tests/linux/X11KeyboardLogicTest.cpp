#include "backends/linux/X11GrabPlan.hpp"
#include "backends/linux/X11KeyTranslator.hpp"
#include "hotkey/Hotkey.hpp"
#include "ports/ModifierKeys.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <tuple>
#include <vector>

namespace hg {
namespace {

constexpr std::uint8_t shiftL = 50, shiftR = 62, capsLock = 66, controlL = 37, controlR = 105,
                       altL = 64, altR = 108, numLock = 77, superL = 133, superR = 134, altGr = 92,
                       keyK = 45, keyA = 38, spareFn = 200;

// A pc105 "us" mapping as Xorg sets it up, optionally with XF86Fn on a spare
// key code and Num Lock on another modifier.
X11KeyRoles usRoles(bool withFn = false, int numLockRow = 4, bool capsIsControl = false) {
    // Up to four key codes for each of the eight modifiers: shift, lock,
    // control, mod1 to mod5.
    std::vector<std::uint8_t> rows = {
        shiftL,  shiftR, 0, 0, capsLock, 0, 0, 0, controlL, controlR, 0, 0, altL,  altR, 0, 0,
        numLock, 0,      0, 0, 0,        0, 0, 0, superL,   superR,   0, 0, altGr, 0,    0, 0};
    std::swap(rows[4 * 4], rows[4 * static_cast<std::size_t>(numLockRow)]);
    if (capsIsControl) {
        std::swap(rows[4], rows[2 * 4 + 2]);
    }
    std::vector<std::uint32_t> keysyms(2 * 248, 0);
    keysyms[2 * (numLock - 8)] = X11KeyRoles::numLockKeysym;
    if (withFn) {
        keysyms[2 * (spareFn - 8) + 1] = X11KeyRoles::fnKeysym;
    }
    return X11KeyRoles::fromMapping(rows, 4, 8, 2, keysyms);
}

// Each key grabbed with its modifiers under every combination of the locks.
std::vector<X11Grab> grabs(std::initializer_list<X11Grab> keys,
                           std::uint16_t numLockMask = x11mask::mod2) {
    std::vector<X11Grab> all;
    for (const X11Grab& key : keys) {
        for (const int locks :
             {0, int{x11mask::lock}, int{numLockMask}, x11mask::lock | numLockMask}) {
            all.push_back({key.keyCode, static_cast<std::uint16_t>(key.modifiers | locks)});
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

TEST(X11GrabPlan, KeysAreGrabbedWithTheShortcutsModifiersUnderEveryLockCombination) {
    using namespace x11mask;
    EXPECT_EQ(X11GrabPlan::forHotkey({40, modifier::control | modifier::option | modifier::shift},
                                     usRoles()),
              grabs({{keyK, control | mod1 | shift}}));
    // Bits outside the significant mask are shown nowhere and matched nowhere.
    EXPECT_EQ(X11GrabPlan::forHotkey({0x60, 0x10000 | 0x100}, usRoles()), grabs({{71, 0}}));
    // Num Lock's modifier follows the mapping.
    EXPECT_EQ(X11GrabPlan::forHotkey({40, modifier::command}, usRoles(false, 5)),
              grabs({{keyK, mod4}}, 0x20));
    // Modifiers alone: each modifier key with the others held.
    const Hotkey controlOption{Hotkey::noKey, modifier::control | modifier::option};
    EXPECT_EQ(X11GrabPlan::forHotkey(controlOption, usRoles()),
              grabs({{controlL, mod1}, {controlR, mod1}, {altL, control}, {altR, control}}));
    EXPECT_EQ(X11GrabPlan::forHotkey(controlOption, usRoles(false, 4, true)),
              grabs({{controlL, mod1},
                     {controlR, mod1},
                     {capsLock, mod1},
                     {altL, control},
                     {altR, control}}))
        << "Caps Lock set up as a third control key";
}

TEST(X11GrabPlan, ShortcutsNoKeyCanGiveAreNotGrabbed) {
    const struct {
        const char* what;
        Hotkey hotkey;
    } rows[] = {
        {"fn alone without an XF86Fn key", Hotkey::defaultHotkey()},
        {"fn-K without an XF86Fn key", {40, modifier::function}},
        {"None", {Hotkey::noKey, 0}},
        {"a modifier key as main key", {55, modifier::shift}},
        {"a key code without X11 counterpart", {0x7F, 0}},
        {"fn's own key code as main key", {63, 0}},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(X11GrabPlan::forHotkey(row.hotkey, usRoles()).empty()) << row.what;
    }
}

TEST(X11GrabPlan, FnIsGrabbedWhereTheKeymapHasAnFnKey) {
    EXPECT_EQ(X11GrabPlan::forHotkey(Hotkey::defaultHotkey(), usRoles(true)),
              grabs({{spareFn, 0}}));
    // shift-fn: fn with Shift held, or either shift key (fn has no X bit; the
    // monitor's exact comparison rejects the shift press without fn held).
    EXPECT_EQ(X11GrabPlan::forHotkey({Hotkey::noKey, modifier::shift | modifier::function},
                                     usRoles(true)),
              grabs({{spareFn, x11mask::shift}, {shiftL, 0}, {shiftR, 0}}));
}

// An event's type, key code and flags; none when there is no event.
using Seen = std::tuple<std::uint32_t, std::int64_t, std::uint64_t>;
std::optional<Seen> seen(const std::optional<TapEvent>& event, std::uint64_t mask = ~0ULL) {
    return event ? std::optional(Seen{event->type, event->keyCode, event->flags & mask})
                 : std::nullopt;
}

TEST(X11KeyTranslator, GrabbedPressesCarryTheFlagsAfterThePress) {
    X11KeyTranslator t;
    t.setRoles(usRoles(true));
    // Modifier keys are flags-changed events whose flags include their own bit.
    t.rawPress(controlL);
    t.rawPress(altR);
    EXPECT_EQ(seen(t.grabbedPress(altR, x11mask::control | x11mask::lock), Hotkey::significantMask),
              Seen(tapevent::flagsChanged, 61, modifier::control | modifier::option));
    // fn is known from its raw press, not from the X state.
    t.rawPress(spareFn);
    EXPECT_EQ(seen(t.grabbedPress(spareFn, 0)),
              Seen(tapevent::flagsChanged, 63, modifier::function));
    t.rawPress(keyA);
    EXPECT_EQ(seen(t.grabbedPress(keyA, 0)), Seen(tapevent::keyDown, 0, modifier::function));
}

TEST(X11KeyTranslator, RawReleasesCarryTheFlagsOfTheKeysStillDown) {
    X11KeyTranslator t;
    t.setRoles(usRoles());
    t.rawPress(controlL);
    t.rawPress(controlR);
    t.rawPress(altL);
    EXPECT_EQ(seen(t.release(controlL, 1)),
              Seen(tapevent::flagsChanged, 59, modifier::control | modifier::option))
        << "right control still down";
    EXPECT_FALSE(t.release(controlL, 1)) << "the same release reported twice";
    t.rawPress(controlL);
    EXPECT_TRUE(t.release(controlL, 1)) << "pressed and released again within a millisecond";
    EXPECT_EQ(seen(t.release(controlR, 2)), Seen(tapevent::flagsChanged, 62, modifier::option));
    EXPECT_EQ(seen(t.release(keyK, 3), 0), Seen(tapevent::keyUp, 40, 0));
    EXPECT_EQ(seen(t.release(capsLock, 4), 0), Seen(tapevent::flagsChanged, 57, 0))
        << "caps lock, as on a Mac";
}

TEST(X11KeyTranslator, KeysReportTheRoleTheMappingGivesThem) {
    X11KeyTranslator t;
    t.setRoles(usRoles(false, 4, true));
    EXPECT_EQ(t.macKeyCode(capsLock), 59) << "Caps Lock set up as control";
    EXPECT_EQ(t.macKeyCode(superR), 54);
    EXPECT_EQ(t.macKeyCode(altGr), std::nullopt) << "AltGr is not option";
    EXPECT_EQ(t.macKeyCode(keyA), 0);
    EXPECT_EQ(t.macKeyCode(spareFn), std::nullopt) << "no XF86Fn there";
    EXPECT_FALSE(t.release(spareFn, 9));
}

} // namespace
} // namespace hg
