#pragma once

#include <cstdint>

namespace hg {

// AppKit and Core Graphics set the function flag on every key event of the
// arrow, Home, End, Page Up, Page Down, forward-delete and Help keys, whether
// or not fn is held: for these keys it names the kind of key, not a modifier
// that is down. Taken for a modifier, a bare arrow would become the shortcut
// "fn→" and vanish from every application. The function keys F1 to F20 keep
// the flag: fn held with F13 is a shortcut a user may want.
[[nodiscard]] constexpr bool isNavigationKey(std::int64_t keyCode) {
    switch (keyCode) {
    case 114: // Help (Insert on PC keyboards)
    case 115: // Home
    case 116: // Page Up
    case 117: // forward delete
    case 119: // End
    case 121: // Page Down
    case 123: // left arrow
    case 124: // right arrow
    case 125: // down arrow
    case 126: // up arrow
        return true;
    default:
        return false;
    }
}

// The modifier flags of a key-down or key-up event of `keyCode`: `flags`
// without the function flag when the key is a navigation key.
[[nodiscard]] constexpr std::uint64_t keyEventModifierFlags(std::int64_t keyCode,
                                                            std::uint64_t flags) {
    constexpr std::uint64_t functionFlag = 0x800000;
    return isNavigationKey(keyCode) ? flags & ~functionFlag : flags;
}

} // namespace hg
