#pragma once

#include "ports/EventTap.hpp"
#include "ports/Shortcut.hpp"

#include <optional>

namespace hg {

// The keyboard events of a shortcut pressed and released as a whole, for
// event taps that are told "the shortcut went down" rather than shown keys
// (a desktop's shortcut service). Fed to the global hotkey monitor, `press`
// and then `release` match `shortcut` as its press and its release, whatever
// kind of shortcut it is: a key with modifiers, or modifiers alone (the first
// of them in the order control, option, shift, command, fn plays the key that
// goes down last and up first). Nothing for a shortcut with neither a key nor
// a modifier.
struct ShortcutEvents {
    TapEvent press;
    TapEvent release;

    [[nodiscard]] static std::optional<ShortcutEvents> of(const Shortcut& shortcut);
};

} // namespace hg
