#include "backends/linux/X11KeyRoles.hpp"

#include "ports/ModifierKeys.hpp"

#include <algorithm>

namespace hg {

namespace {

// Rows of the modifier mapping, in the protocol's order, that carry a shortcut
// modifier. Lock, Mod2, Mod3 and Mod5 carry none.
constexpr std::array<std::uint64_t, 8> roleOfRow = {
    modifier::shift, 0, modifier::control, modifier::option, 0, 0, modifier::command, 0,
};

constexpr std::array<std::pair<std::uint16_t, std::uint64_t>, 5> maskToFlag = {{
    {x11mask::shift, modifier::shift},
    {x11mask::lock, 0x10000}, // Core Graphics' alpha-shift; not a shortcut modifier
    {x11mask::control, modifier::control},
    {x11mask::mod1, modifier::option},
    {x11mask::mod4, modifier::command},
}};

} // namespace

X11KeyRoles X11KeyRoles::fromMapping(std::span<const std::uint8_t> modifierKeyCodes,
                                     std::size_t keyCodesPerModifier, std::uint8_t minKeyCode,
                                     std::size_t keysymsPerKeyCode,
                                     std::span<const std::uint32_t> keysyms) {
    X11KeyRoles result;
    std::vector<std::uint8_t> numLockKeys;
    if (keysymsPerKeyCode > 0) {
        for (std::size_t i = 0; i < keysyms.size(); ++i) {
            const std::size_t code = minKeyCode + i / keysymsPerKeyCode;
            if (code > 255) {
                break;
            }
            if (keysyms[i] == fnKeysym) {
                result.roles_[code] = modifier::function;
            } else if (keysyms[i] == numLockKeysym) {
                numLockKeys.push_back(static_cast<std::uint8_t>(code));
            }
        }
    }
    bool numLockFound = false;
    for (std::size_t row = 0; row < roleOfRow.size(); ++row) {
        for (std::size_t slot = 0; slot < keyCodesPerModifier; ++slot) {
            const std::size_t index = row * keyCodesPerModifier + slot;
            if (index >= modifierKeyCodes.size()) {
                break;
            }
            const std::uint8_t code = modifierKeyCodes[index];
            if (code == 0) {
                continue;
            }
            // A key that gives XF86Fn is fn whatever modifier it also sets.
            if (roleOfRow[row] != 0 && result.roles_[code] != modifier::function) {
                result.roles_[code] = roleOfRow[row];
            }
            if (!numLockFound &&
                std::find(numLockKeys.begin(), numLockKeys.end(), code) != numLockKeys.end()) {
                result.numLockMask_ = static_cast<std::uint16_t>(1U << row);
                numLockFound = true;
            }
        }
    }
    return result;
}

std::vector<std::uint8_t> X11KeyRoles::keysFor(std::uint64_t role) const {
    std::vector<std::uint8_t> keys;
    for (std::size_t code = 0; code < roles_.size(); ++code) {
        if (role != 0 && roles_[code] == role) {
            keys.push_back(static_cast<std::uint8_t>(code));
        }
    }
    return keys;
}

std::uint64_t X11KeyRoles::flagsForState(std::uint16_t state) {
    std::uint64_t flags = 0;
    for (const auto& [mask, flag] : maskToFlag) {
        if ((state & mask) != 0) {
            flags |= flag;
        }
    }
    return flags;
}

std::uint16_t X11KeyRoles::stateForFlags(std::uint64_t flags) {
    std::uint16_t state = 0;
    for (const auto& [mask, flag] : maskToFlag) {
        if (mask != x11mask::lock && (flags & flag) != 0) {
            state = static_cast<std::uint16_t>(state | mask);
        }
    }
    return state;
}

} // namespace hg
