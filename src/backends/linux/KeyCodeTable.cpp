#include "backends/linux/KeyCodeTable.hpp"

#include <array>

namespace hg {

namespace {

constexpr KeyCodeTable::Entry fromEvdev(std::uint32_t evdev, std::uint16_t mac) {
    return {evdev + KeyCodeTable::evdevOffset, mac};
}

// Columns: evdev code (linux/input-event-codes.h), macOS virtual key code
// (HIToolbox Events.h kVK_*), as paired through their common USB HID usage.
constexpr std::array table{
    // Letters
    fromEvdev(30, 0x00), // A
    fromEvdev(48, 0x0B), // B
    fromEvdev(46, 0x08), // C
    fromEvdev(32, 0x02), // D
    fromEvdev(18, 0x0E), // E
    fromEvdev(33, 0x03), // F
    fromEvdev(34, 0x05), // G
    fromEvdev(35, 0x04), // H
    fromEvdev(23, 0x22), // I
    fromEvdev(36, 0x26), // J
    fromEvdev(37, 0x28), // K
    fromEvdev(38, 0x25), // L
    fromEvdev(50, 0x2E), // M
    fromEvdev(49, 0x2D), // N
    fromEvdev(24, 0x1F), // O
    fromEvdev(25, 0x23), // P
    fromEvdev(16, 0x0C), // Q
    fromEvdev(19, 0x0F), // R
    fromEvdev(31, 0x01), // S
    fromEvdev(20, 0x11), // T
    fromEvdev(22, 0x20), // U
    fromEvdev(47, 0x09), // V
    fromEvdev(17, 0x0D), // W
    fromEvdev(45, 0x07), // X
    fromEvdev(21, 0x10), // Y
    fromEvdev(44, 0x06), // Z
    // Digits row
    fromEvdev(2, 0x12),  // 1
    fromEvdev(3, 0x13),  // 2
    fromEvdev(4, 0x14),  // 3
    fromEvdev(5, 0x15),  // 4
    fromEvdev(6, 0x17),  // 5
    fromEvdev(7, 0x16),  // 6
    fromEvdev(8, 0x1A),  // 7
    fromEvdev(9, 0x1C),  // 8
    fromEvdev(10, 0x19), // 9
    fromEvdev(11, 0x1D), // 0
    // Editing and punctuation
    fromEvdev(28, 0x24),  // Return
    fromEvdev(1, 0x35),   // Escape
    fromEvdev(14, 0x33),  // Backspace (Mac Delete)
    fromEvdev(15, 0x30),  // Tab
    fromEvdev(57, 0x31),  // Space
    fromEvdev(12, 0x1B),  // Minus
    fromEvdev(13, 0x18),  // Equal
    fromEvdev(26, 0x21),  // Left bracket
    fromEvdev(27, 0x1E),  // Right bracket
    fromEvdev(43, 0x2A),  // Backslash
    fromEvdev(39, 0x29),  // Semicolon
    fromEvdev(40, 0x27),  // Quote
    fromEvdev(41, 0x32),  // Grave
    fromEvdev(51, 0x2B),  // Comma
    fromEvdev(52, 0x2F),  // Period
    fromEvdev(53, 0x2C),  // Slash
    fromEvdev(86, 0x0A),  // ISO key beside left shift (Mac ISO section)
    fromEvdev(89, 0x5E),  // JIS Ro
    fromEvdev(124, 0x5D), // JIS Yen
    fromEvdev(122, 0x68), // Hangul / JIS Kana
    fromEvdev(123, 0x66), // Hanja / JIS Eisu
    fromEvdev(58, 0x39),  // Caps Lock
    // Function keys
    fromEvdev(59, 0x7A),  // F1
    fromEvdev(60, 0x78),  // F2
    fromEvdev(61, 0x63),  // F3
    fromEvdev(62, 0x76),  // F4
    fromEvdev(63, 0x60),  // F5
    fromEvdev(64, 0x61),  // F6
    fromEvdev(65, 0x62),  // F7
    fromEvdev(66, 0x64),  // F8
    fromEvdev(67, 0x65),  // F9
    fromEvdev(68, 0x6D),  // F10
    fromEvdev(87, 0x67),  // F11
    fromEvdev(88, 0x6F),  // F12
    fromEvdev(183, 0x69), // F13
    fromEvdev(184, 0x6B), // F14
    fromEvdev(185, 0x71), // F15
    fromEvdev(186, 0x6A), // F16
    fromEvdev(187, 0x40), // F17
    fromEvdev(188, 0x4F), // F18
    fromEvdev(189, 0x50), // F19
    fromEvdev(190, 0x5A), // F20
    // Navigation
    fromEvdev(110, 0x72), // Insert (Mac Help)
    fromEvdev(102, 0x73), // Home
    fromEvdev(104, 0x74), // Page Up
    fromEvdev(111, 0x75), // Delete (Mac Forward Delete)
    fromEvdev(107, 0x77), // End
    fromEvdev(109, 0x79), // Page Down
    fromEvdev(105, 0x7B), // Left
    fromEvdev(106, 0x7C), // Right
    fromEvdev(108, 0x7D), // Down
    fromEvdev(103, 0x7E), // Up
    fromEvdev(127, 0x6E), // Menu (Compose)
    // Keypad
    fromEvdev(69, 0x47),  // Num Lock (Mac keypad Clear)
    fromEvdev(98, 0x4B),  // Keypad /
    fromEvdev(55, 0x43),  // Keypad *
    fromEvdev(74, 0x4E),  // Keypad -
    fromEvdev(78, 0x45),  // Keypad +
    fromEvdev(96, 0x4C),  // Keypad Enter
    fromEvdev(117, 0x51), // Keypad =
    fromEvdev(121, 0x5F), // Keypad , (JIS)
    fromEvdev(83, 0x41),  // Keypad .
    fromEvdev(82, 0x52),  // Keypad 0
    fromEvdev(79, 0x53),  // Keypad 1
    fromEvdev(80, 0x54),  // Keypad 2
    fromEvdev(81, 0x55),  // Keypad 3
    fromEvdev(75, 0x56),  // Keypad 4
    fromEvdev(76, 0x57),  // Keypad 5
    fromEvdev(77, 0x58),  // Keypad 6
    fromEvdev(71, 0x59),  // Keypad 7
    fromEvdev(72, 0x5B),  // Keypad 8
    fromEvdev(73, 0x5C),  // Keypad 9
    // Volume
    fromEvdev(113, 0x4A), // Mute
    fromEvdev(114, 0x49), // Volume down
    fromEvdev(115, 0x48), // Volume up
    // Modifiers
    fromEvdev(125, 0x37),                         // Left Super (Mac Command)
    fromEvdev(126, 0x36),                         // Right Super (Mac right Command)
    fromEvdev(42, 0x38),                          // Left Shift
    fromEvdev(54, 0x3C),                          // Right Shift
    fromEvdev(56, 0x3A),                          // Left Alt (Mac Option)
    fromEvdev(100, 0x3D),                         // Right Alt (Mac right Option)
    fromEvdev(29, 0x3B),                          // Left Control
    fromEvdev(97, 0x3E),                          // Right Control
    fromEvdev(464, KeyCodeTable::macFunctionKey), // Fn
};

} // namespace

std::optional<std::uint16_t> KeyCodeTable::macKeyCode(std::uint32_t x11KeyCode) {
    for (const Entry& entry : table) {
        if (entry.x11 == x11KeyCode) {
            return entry.mac;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> KeyCodeTable::x11KeyCode(std::uint16_t macKeyCode) {
    for (const Entry& entry : table) {
        if (entry.mac == macKeyCode) {
            return entry.x11;
        }
    }
    return std::nullopt;
}

std::span<const KeyCodeTable::Entry> KeyCodeTable::entries() {
    return table;
}

} // namespace hg
