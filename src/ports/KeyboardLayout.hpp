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
    // ("a" gives "A"). Nothing when there is no layout, no text, or only a dead
    // key or control character.
    [[nodiscard]] virtual std::optional<std::string> displayText(std::uint16_t keyCode) const = 0;
};

} // namespace hg
