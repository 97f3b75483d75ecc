#include "backends/fake/FakeKeyboardLayout.hpp"

#include <array>
#include <string_view>

namespace hg {

namespace {

// Indexed by macOS virtual key code; empty where the layout gives no text.
constexpr std::array<std::string_view, 93> usAnsi = {
    "A", "S", "D",  "F", "H", "G", "Z", "X", "C", "V", // 0-9
    "",  "B", "Q",  "W", "E", "R", "Y", "T", "1", "2", // 10-19 (10: ISO key, not on ANSI)
    "3", "4", "6",  "5", "=", "9", "7", "-", "8", "0", // 20-29
    "]", "O", "U",  "[", "I", "P", "",  "L", "J", "'", // 30-39
    "K", ";", "\\", ",", "/", "N", "M", ".", "",  " ", // 40-49
    "`", "",  "",   "",  "",  "",  "",  "",  "",  "",  // 50-59
    "",  "",  "",   "",  "",  ".", "",  "*", "",  "+", // 60-69 (65.. keypad)
    "",  "",  "",   "",  "",  "/", "",  "",  "-", "",  // 70-79
    "",  "=", "0",  "1", "2", "3", "4", "5", "6", "7", // 80-89
    "",  "8", "9",                                     // 90-92
};

} // namespace

std::optional<std::string> FakeKeyboardLayout::displayText(std::uint16_t keyCode) const {
    if (keyCode >= usAnsi.size() || usAnsi[keyCode].empty()) {
        return std::nullopt;
    }
    return std::string(usAnsi[keyCode]);
}

} // namespace hg
