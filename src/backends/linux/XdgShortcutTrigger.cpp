#include "backends/linux/XdgShortcutTrigger.hpp"

#include "backends/linux/KeyCodeTable.hpp"
#include "ports/ModifierKeys.hpp"

#include <array>
#include <memory>
#include <utility>
#include <xkbcommon/xkbcommon.h>

namespace hg {

namespace {

constexpr std::array<std::pair<std::uint64_t, const char*>, 4> modifierNames{{
    {modifier::control, "CTRL"},
    {modifier::option, "ALT"},
    {modifier::shift, "SHIFT"},
    {modifier::command, "LOGO"},
}};

std::optional<std::string> keysymName(std::uint32_t x11KeyCode) {
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref);
    if (!context) {
        return std::nullopt;
    }
    const std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap(
        xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS),
        &xkb_keymap_unref);
    if (!keymap) {
        return std::nullopt;
    }
    const xkb_keysym_t* syms = nullptr;
    if (xkb_keymap_key_get_syms_by_level(keymap.get(), x11KeyCode, 0, 0, &syms) < 1) {
        return std::nullopt;
    }
    std::array<char, 64> name{};
    if (xkb_keysym_get_name(syms[0], name.data(), name.size()) <= 0) {
        return std::nullopt;
    }
    return std::string(name.data());
}

} // namespace

std::optional<std::string> XdgShortcutTrigger::of(const Shortcut& hotkey) {
    const std::uint64_t modifiers = hotkey.modifiers & Shortcut::significantMask;
    if (hotkey.keyCode == Shortcut::noKey || (modifiers & modifier::function) != 0) {
        return std::nullopt;
    }
    const auto x11 = KeyCodeTable::x11KeyCode(hotkey.keyCode);
    const auto key = x11 ? keysymName(*x11) : std::nullopt;
    if (!key) {
        return std::nullopt;
    }
    std::string trigger;
    for (const auto& [bit, name] : modifierNames) {
        if ((modifiers & bit) != 0) {
            trigger += name;
            trigger += '+';
        }
    }
    return trigger + *key;
}

} // namespace hg
