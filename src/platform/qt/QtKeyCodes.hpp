#pragma once

#include <Qt>
#include <cstdint>
#include <optional>

namespace hg {

// Qt key values and modifiers in the macOS vocabulary that stored shortcuts
// use. This is the fallback for key events without a usable native key code
// (the offscreen platform, synthesized events); real X11 and macOS events are
// converted from their native codes, which also tell left from right.
namespace qtkeys {

// Whether Qt reads this platform's keyboard the macOS way (ControlModifier is
// the command key); the `macLayout` arguments below take it on real events.
#ifdef Q_OS_MACOS
inline constexpr bool platformMacLayout = true;
#else
inline constexpr bool platformMacLayout = false;
#endif

// The macOS virtual key code of the physical key that gives `key` on a US
// layout. Shifted punctuation ("!", "?") maps to its unshifted key; keypad keys
// are told apart by `keypad`; `macLayout` as below. Nothing for keys without
// a counterpart.
[[nodiscard]] std::optional<std::uint16_t> macKeyCode(int key, bool keypad, bool macLayout);

// The macOS modifier flags of Qt modifiers. Qt on macOS swaps Control and
// Meta (ControlModifier is the command key); `macLayout` selects that reading.
[[nodiscard]] std::uint64_t macModifierFlags(Qt::KeyboardModifiers modifiers, bool macLayout);

// The modifier bit that a modifier key drives (Key_Shift gives shift, ...), or
// 0 for every other key, caps lock included.
[[nodiscard]] std::uint64_t modifierBit(int key, bool macLayout);

} // namespace qtkeys
} // namespace hg
