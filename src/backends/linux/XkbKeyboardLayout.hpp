#pragma once

#include "ports/KeyboardLayout.hpp"

#include <memory>
#include <string>

namespace hg {

// Key names from xkbcommon: the text a key gives on the current layout with no
// modifiers (the layout's first shift level), upper-cased.
//
// The default instance reads the keymap of the X11 display Qt runs on, at
// every call, so a layout switched since is honoured; without an X11 display
// there is no layout and every answer is nothing. The other constructor uses
// a fixed keymap built from rule names, for tests and for machines whose
// keymap is known.
class XkbKeyboardLayout final : public KeyboardLayout {
public:
    XkbKeyboardLayout();
    XkbKeyboardLayout(const std::string& rules, const std::string& model, const std::string& layout,
                      const std::string& variant = {}, const std::string& options = {});
    ~XkbKeyboardLayout() override;
    XkbKeyboardLayout(const XkbKeyboardLayout&) = delete;
    XkbKeyboardLayout& operator=(const XkbKeyboardLayout&) = delete;

    // Nothing for keys without an X11 counterpart, keys that give no text, a
    // control character or only a dead key, and when there is no keymap.
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t keyCode) const override;
    // Linux desktops write Ctrl+Alt+Shift+Super.
    [[nodiscard]] ModifierNotation modifierNotation() const override {
        return ModifierNotation::names;
    }

    // Whether a keymap could be built (from the names, or now from X11).
    [[nodiscard]] bool hasKeymap() const;

private:
    struct Keymap;
    [[nodiscard]] std::unique_ptr<Keymap> currentX11Keymap() const;

    std::unique_ptr<Keymap> fixed_;
    bool fromX11_ = false;
};

} // namespace hg
