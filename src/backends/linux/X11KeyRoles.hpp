#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace hg {

// Core-protocol modifier mask bits of X11 key events and grabs.
namespace x11mask {
inline constexpr std::uint16_t shift = 0x01;
inline constexpr std::uint16_t lock = 0x02;
inline constexpr std::uint16_t control = 0x04;
inline constexpr std::uint16_t mod1 = 0x08; // Alt: the option key
inline constexpr std::uint16_t mod2 = 0x10; // Num Lock on usual keymaps
inline constexpr std::uint16_t mod4 = 0x40; // Super: the command key
} // namespace x11mask

// Which X11 key codes drive which shortcut modifier on the current keyboard
// mapping. Roles come from the mapping, not from the physical key, so a
// keyboard with Caps Lock turned into Control behaves as the user set it up.
// fn has no X11 modifier bit: the keys whose keysyms include XF86Fn play it.
class X11KeyRoles {
public:
    // The XF86Fn and Num_Lock keysyms.
    static constexpr std::uint32_t fnKeysym = 0x100811D0;
    static constexpr std::uint32_t numLockKeysym = 0xFF7F;

    // No roles at all; Num Lock on Mod2.
    X11KeyRoles() = default;

    // From the server's modifier mapping (8 rows of `keyCodesPerModifier` key
    // codes, 0 for unused slots) and keyboard mapping (`keysymsPerKeyCode`
    // keysyms for each key code from `minKeyCode` on).
    static X11KeyRoles fromMapping(std::span<const std::uint8_t> modifierKeyCodes,
                                   std::size_t keyCodesPerModifier, std::uint8_t minKeyCode,
                                   std::size_t keysymsPerKeyCode,
                                   std::span<const std::uint32_t> keysyms);

    // The shortcut modifier bit (modifier::shift ... modifier::function) that
    // this key drives, or 0.
    [[nodiscard]] std::uint64_t roleOf(std::uint8_t keyCode) const { return roles_[keyCode]; }

    // Every key code driving `role`, ascending.
    [[nodiscard]] std::vector<std::uint8_t> keysFor(std::uint64_t role) const;

    // The X11 mask that Num Lock sets (Mod2 unless the mapping says otherwise).
    [[nodiscard]] std::uint16_t numLockMask() const { return numLockMask_; }

    // Shortcut modifier flags of an X11 modifier state; fn is never in it.
    [[nodiscard]] static std::uint64_t flagsForState(std::uint16_t state);
    // The X11 modifier mask for shortcut modifier flags; fn has none.
    [[nodiscard]] static std::uint16_t stateForFlags(std::uint64_t flags);

    friend bool operator==(const X11KeyRoles&, const X11KeyRoles&) = default;

private:
    std::array<std::uint64_t, 256> roles_{};
    std::uint16_t numLockMask_ = x11mask::mod2;
};

} // namespace hg
