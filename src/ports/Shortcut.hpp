#pragma once

#include <cstdint>

namespace hg {

// A keyboard shortcut as a value: a main key with modifiers, or modifiers
// alone (keyCode noKey). Key codes are macOS virtual key codes and modifiers
// the flags of ModifierKeys on every platform; backends convert.
struct Shortcut {
    static constexpr std::uint16_t noKey = 0xFFFF;
    // shift, control, option, command, function: the only bits ever written.
    static constexpr std::uint64_t significantMask = 0x9E0000;

    std::uint16_t keyCode = noKey; // macOS virtual key code
    std::uint64_t modifiers = 0;   // raw modifier flags; extra bits kept, shown nowhere

    friend bool operator==(const Shortcut&, const Shortcut&) = default;
};

} // namespace hg
