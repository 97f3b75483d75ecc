#pragma once

#include "backends/linux/X11KeyRoles.hpp"
#include "ports/Shortcut.hpp"

#include <compare>
#include <cstdint>
#include <vector>

namespace hg {

// One passive key grab on the root window.
struct X11Grab {
    std::uint8_t keyCode = 0;
    std::uint16_t modifiers = 0;
    friend auto operator<=>(const X11Grab&, const X11Grab&) = default;
};

// The passive grabs that let the X server hand the stored shortcut's presses
// to us. X matches a grab's modifiers exactly, so each grab is made once per
// combination of the lock modifiers (none, Caps Lock, Num Lock, both), and a
// press with an extra modifier held is never caught: command-shift-K goes past
// a command-K grab to the focused window.
//
// A main-key shortcut is one grab of its key with its modifiers. A shortcut of
// modifiers alone is one grab of each key driving one of its modifiers, with
// the others as the grab's modifiers, so the press of whichever modifier comes
// last is caught. fn has no X modifier bit: with fn in the shortcut, keys are
// grabbed without it and the tap's tracked fn state decides, through the
// monitor's exact comparison, whether the press matches.
class X11GrabPlan {
public:
    // Sorted, without duplicates. Empty when no key of the current mapping can
    // give the shortcut (fn without an XF86Fn key, a key code without an X11
    // counterpart, a modifier key as main key, no key and no modifiers).
    [[nodiscard]] static std::vector<X11Grab> forHotkey(const Shortcut& hotkey,
                                                        const X11KeyRoles& roles);
};

} // namespace hg
