#pragma once

#include <cstdint>

namespace hg {

// Modifier bits of a key event: the AppKit modifier-flag values, which are also
// the Core Graphics event-flag masks of the same keys.
namespace modifier {
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
inline constexpr std::uint64_t function = 0x800000;
} // namespace modifier

// The modifier bit that the modifier key with this macOS virtual key code
// drives, or 0 for every other key. Caps lock (57) is deliberately not a
// modifier key here: it toggles a state instead of being held.
[[nodiscard]] constexpr std::uint64_t modifierBitForKeyCode(std::uint16_t keyCode) {
    switch (keyCode) {
    case 54:
    case 55:
        return modifier::command;
    case 56:
    case 60:
        return modifier::shift;
    case 58:
    case 61:
        return modifier::option;
    case 59:
    case 62:
        return modifier::control;
    case 63:
        return modifier::function;
    default:
        return 0;
    }
}

} // namespace hg
