#pragma once

#include "ports/Shortcut.hpp"

#include <optional>
#include <string>

namespace hg {

// A stored shortcut in the shortcut syntax that desktop portals take as a
// preferred trigger: modifiers CTRL, ALT, SHIFT and LOGO, then the key's
// keysym name, joined by "+": command-option-K is "ALT+LOGO+k". The keysym is
// the key's first on the default keymap (XKB_DEFAULT_LAYOUT and its
// neighbours, else a US layout), since a Wayland client is not shown the
// desktop's own. Nothing for what the syntax cannot say: fn, modifiers alone,
// a key without a keysym.
class XdgShortcutTrigger {
public:
    [[nodiscard]] static std::optional<std::string> of(const Shortcut& hotkey);
};

} // namespace hg
