#include "backends/linux/KeyCodeTable.hpp"

#include <gtest/gtest.h>
#include <set>

namespace hg {
namespace {

TEST(KeyCodeTable, KnownKeysConvertBothWays) {
    struct Row {
        const char* key;
        std::uint32_t x11;
        std::uint16_t mac;
    };
    // X11 codes are evdev + 8, as xev shows them on a PC keyboard.
    const Row rows[] = {
        {"A", 38, 0x00},          {"K", 45, 40},           {"1", 10, 0x12},
        {"Return", 36, 0x24},     {"F5", 71, 0x60},        {"F13", 191, 0x69},
        {"Up", 111, 0x7E},        {"KP_Enter", 104, 0x4C}, {"Super_R", 134, 54},
        {"Control_R", 105, 62},   {"Alt_L", 64, 58},       {"Caps_Lock", 66, 57},
        {"less (ISO)", 94, 0x0A},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(KeyCodeTable::macKeyCode(row.x11), row.mac) << row.key;
        EXPECT_EQ(KeyCodeTable::x11KeyCode(row.mac), row.x11) << row.key;
    }
}

TEST(KeyCodeTable, KeysWithoutCounterpartConvertToNothing) {
    const auto fn = KeyCodeTable::x11KeyCode(KeyCodeTable::macFunctionKey);
    ASSERT_TRUE(fn.has_value());
    EXPECT_GT(*fn, 255u) << "fn lies outside the core protocol's range";
    EXPECT_FALSE(KeyCodeTable::macKeyCode(0).has_value());
    EXPECT_FALSE(KeyCodeTable::macKeyCode(107).has_value()) << "Print Screen";
    EXPECT_FALSE(KeyCodeTable::macKeyCode(127).has_value()) << "Pause";
    EXPECT_FALSE(KeyCodeTable::x11KeyCode(0xFFFF).has_value());
    EXPECT_FALSE(KeyCodeTable::x11KeyCode(0x7F).has_value());
}

TEST(KeyCodeTable, IsOneToOne) {
    std::set<std::uint32_t> x11;
    std::set<std::uint16_t> mac;
    for (const auto& entry : KeyCodeTable::entries()) {
        EXPECT_TRUE(x11.insert(entry.x11).second) << "X11 code " << entry.x11 << " twice";
        EXPECT_TRUE(mac.insert(entry.mac).second) << "mac code " << entry.mac << " twice";
        EXPECT_EQ(KeyCodeTable::x11KeyCode(entry.mac), entry.x11);
        EXPECT_EQ(KeyCodeTable::macKeyCode(entry.x11), entry.mac);
    }
    // Every macOS code from 0 to 126 has an X11 counterpart, except the codes
    // Apple never assigned and fn (found by keysym, not by code).
    const std::set<std::uint16_t> unassigned = {0x34, 0x42, 0x44, 0x46,
                                                0x4D, 0x6C, 0x70, KeyCodeTable::macFunctionKey};
    for (std::uint16_t code = 0; code <= 126; ++code) {
        if (!unassigned.contains(code)) {
            EXPECT_TRUE(KeyCodeTable::x11KeyCode(code).has_value()) << "mac code " << code;
        }
    }
}

} // namespace
} // namespace hg
