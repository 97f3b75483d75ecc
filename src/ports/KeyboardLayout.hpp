#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace hg {

// The current keyboard layout, for naming keys.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;

    // The text (UTF-8) that the current layout produces for the macOS virtual
    // key code with no modifiers and the display action, already upper-cased
    // ("a" gives "A"). Nothing when there is no layout or it gives no text.
    // Layouts that produce nothing printable for a key (a dead key, a control
    // character) may give nothing for it, as xkbcommon's does.
    [[nodiscard]] virtual std::optional<std::string> displayText(std::uint16_t keyCode) const = 0;

    // How the desktop writes a shortcut's modifiers: the Mac's symbols run
    // together ("⌃⌥⇧⌘fnK"), or the names PC desktops use, joined by "+"
    // ("Ctrl+Alt+Shift+Super+Fn+K").
    enum class ModifierNotation { symbols, names };
    [[nodiscard]] virtual ModifierNotation modifierNotation() const {
        return ModifierNotation::symbols;
    }

    // Whether the system itself acts on a press of fn alone: on a Mac it is
    // also the Globe key, which shows emoji, changes the input source or
    // starts dictation unless the user's setting is "Do Nothing"; removing
    // the event from the stream does not stop that. PC desktops: never.
    [[nodiscard]] virtual bool systemActsOnFunctionKey() const { return false; }
};

} // namespace hg
