#include "backends/linux/X11GrabPlan.hpp"

#include "backends/linux/KeyCodeTable.hpp"
#include "ports/ModifierKeys.hpp"

#include <algorithm>
#include <array>

namespace hg {

namespace {

constexpr std::array<std::uint64_t, 5> roles = {
    modifier::shift, modifier::control, modifier::option, modifier::command, modifier::function};

} // namespace

std::vector<X11Grab> X11GrabPlan::forHotkey(const Shortcut& hotkey, const X11KeyRoles& keyRoles) {
    const std::uint64_t modifiers = hotkey.modifiers & Shortcut::significantMask;
    if ((modifiers & modifier::function) != 0 && keyRoles.keysFor(modifier::function).empty()) {
        return {};
    }

    std::vector<X11Grab> base;
    if (hotkey.keyCode != Shortcut::noKey) {
        const auto x11 = KeyCodeTable::x11KeyCode(hotkey.keyCode);
        // The monitor never matches a modifier key as the main key.
        if (!x11 || *x11 > 255 || modifierBitForKeyCode(hotkey.keyCode) != 0) {
            return {};
        }
        base.push_back({static_cast<std::uint8_t>(*x11), X11KeyRoles::stateForFlags(modifiers)});
    } else {
        for (const std::uint64_t role : roles) {
            if ((modifiers & role) == 0) {
                continue;
            }
            const std::uint16_t others = X11KeyRoles::stateForFlags(modifiers & ~role);
            for (const std::uint8_t key : keyRoles.keysFor(role)) {
                base.push_back({key, others});
            }
        }
    }

    const std::uint16_t numLock = keyRoles.numLockMask();
    const std::array<std::uint16_t, 4> locks = {
        0, x11mask::lock, numLock, static_cast<std::uint16_t>(x11mask::lock | numLock)};
    std::vector<X11Grab> grabs;
    for (const X11Grab& grab : base) {
        for (const std::uint16_t lock : locks) {
            grabs.push_back({grab.keyCode, static_cast<std::uint16_t>(grab.modifiers | lock)});
        }
    }
    std::sort(grabs.begin(), grabs.end());
    grabs.erase(std::unique(grabs.begin(), grabs.end()), grabs.end());
    return grabs;
}

} // namespace hg
