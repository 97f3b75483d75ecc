#pragma once

#include "ports/KeyboardLayout.hpp"

namespace hg {

// The US ANSI layout: letters, digits, punctuation and keypad characters,
// upper-cased. Keys that produce no printable character there (Return, Tab,
// Escape, arrows, function keys, modifiers) have no text.
class FakeKeyboardLayout final : public KeyboardLayout {
public:
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t keyCode) const override;
    [[nodiscard]] ModifierNotation modifierNotation() const override { return notation; }

    [[nodiscard]] bool systemActsOnFunctionKey() const override { return globeKeyActs; }

    ModifierNotation notation = ModifierNotation::symbols;
    bool globeKeyActs = false;
};

} // namespace hg
