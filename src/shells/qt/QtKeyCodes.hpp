#pragma once

#include <Qt>
#include <cstdint>
#include <optional>

namespace hg {

// Qt key values and modifiers in the macOS vocabulary that stored shortcuts
// use. This is the fallback for key events without a usable native key code
// (the offscreen platform, synthesized events); real X11 events are converted
// from their native codes, which also tell left from right. Meta is the Super
// key, which stands for command.
namespace qtkeys {

// The macOS virtual key code of the physical key that gives `key` on a US
// layout. Shifted punctuation ("!", "?") maps to its unshifted key; keypad keys
// are told apart by `keypad`. Nothing for keys without a counterpart.
[[nodiscard]] std::optional<std::uint16_t> macKeyCode(int key, bool keypad);

// The macOS modifier flags of Qt modifiers.
[[nodiscard]] std::uint64_t macModifierFlags(Qt::KeyboardModifiers modifiers);

// The modifier bit that a modifier key drives (Key_Shift gives shift, ...), or
// 0 for every other key, caps lock included.
[[nodiscard]] std::uint64_t modifierBit(int key);

} // namespace qtkeys
} // namespace hg
