#include "hotkey/KeyName.hpp"

namespace hg {

std::optional<std::string_view> specialKeyName(std::uint16_t keyCode) {
    switch (keyCode) {
    case 36:
        return "\u21A9"; // Return ↩
    case 48:
        return "\u21E5"; // Tab ⇥
    case 49:
        return "Space";
    case 51:
        return "\u232B"; // Delete ⌫
    case 53:
        return "\u238B"; // Escape ⎋
    case 96:
        return "F5";
    case 97:
        return "F6";
    case 98:
        return "F7";
    case 99:
        return "F3";
    case 100:
        return "F8";
    case 101:
        return "F9";
    case 103:
        return "F11";
    case 109:
        return "F10";
    case 111:
        return "F12";
    case 115:
        return "\u2196"; // Home ↖
    case 116:
        return "\u21DE"; // Page Up ⇞
    case 117:
        return "\u2326"; // Forward Delete ⌦
    case 118:
        return "F4";
    case 119:
        return "\u2198"; // End ↘
    case 120:
        return "F2";
    case 121:
        return "\u21DF"; // Page Down ⇟
    case 122:
        return "F1";
    case 123:
        return "\u2190"; // Left ←
    case 124:
        return "\u2192"; // Right →
    case 125:
        return "\u2193"; // Down ↓
    case 126:
        return "\u2191"; // Up ↑
    default:
        return std::nullopt;
    }
}

std::string keyName(std::uint16_t keyCode, const KeyboardLayout* layout) {
    if (const auto special = specialKeyName(keyCode)) {
        return std::string(*special);
    }
    if (layout != nullptr) {
        if (auto text = layout->displayText(keyCode); text && !text->empty()) {
            return std::move(*text);
        }
    }
    // Appended piece by piece: GCC 12 at -O3 reports a false -Wrestrict for
    // "<" + std::to_string(...).
    std::string fallback = "<";
    fallback += std::to_string(keyCode);
    fallback += '>';
    return fallback;
}

} // namespace hg
