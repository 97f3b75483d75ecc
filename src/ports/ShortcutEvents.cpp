#include "ports/ShortcutEvents.hpp"

#include "ports/ModifierKeys.hpp"

#include <array>
#include <utility>

namespace hg {

namespace {

// A left-hand key for each modifier bit, as the modifier-key table reads it.
constexpr std::array<std::pair<std::uint64_t, std::uint16_t>, 5> modifierKeys{{
    {modifier::control, 59},
    {modifier::option, 58},
    {modifier::shift, 56},
    {modifier::command, 55},
    {modifier::function, 63},
}};

} // namespace

std::optional<ShortcutEvents> ShortcutEvents::of(const Shortcut& shortcut) {
    const std::uint64_t modifiers = shortcut.modifiers & Shortcut::significantMask;
    if (shortcut.keyCode != Shortcut::noKey) {
        return ShortcutEvents{
            .press = TapEvent{.type = tapevent::keyDown,
                              .keyCode = shortcut.keyCode,
                              .flags = modifiers},
            .release =
                TapEvent{.type = tapevent::keyUp, .keyCode = shortcut.keyCode, .flags = modifiers},
        };
    }
    for (const auto& [bit, keyCode] : modifierKeys) {
        if ((modifiers & bit) != 0) {
            return ShortcutEvents{
                .press = TapEvent{.type = tapevent::flagsChanged,
                                  .keyCode = keyCode,
                                  .flags = modifiers},
                .release = TapEvent{.type = tapevent::flagsChanged,
                                    .keyCode = keyCode,
                                    .flags = modifiers & ~bit},
            };
        }
    }
    return std::nullopt;
}

} // namespace hg
