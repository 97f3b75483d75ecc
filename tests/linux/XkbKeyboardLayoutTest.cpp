#include "backends/linux/XkbKeyboardLayout.hpp"

#include "DesktopSession.hpp"
#include "hotkey/KeyName.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

TEST(XkbKeyboardLayout, NamesKeysAsEachLayoutLabelsThem) {
    const struct {
        const char* layout;
        std::uint16_t macKeyCode;
        std::optional<std::string> text;
    } rows[] = {
        {"us", 0, "A"},     {"us", 40, "K"},   {"us", 0x29, ";"},
        {"us", 0x2C, "/"},  {"us", 0x53, "1"}, // keypad 1 gives its digit, as on a Mac keypad
        {"us", 0x69, {}},                      // F13 gives no text
        {"us", 36, {}},                        // Return: a control character
        {"us", 0x7F, {}},                      // no such key
        {"fr", 0, "Q"},     {"fr", 12, "A"},   {"fr", 0x29, "M"},
        {"fr", 0x12, "&"},  {"de", 6, "Y"},    {"de", 0x29, "Ö"},
        {"de", 0x1B, "SS"}, {"de", 0x18, {}}, // the acute accent is a dead key: no text
        {"ru", 0, "Ф"},     {"ru", 12, "Й"},   {"ru", 0x12, "1"},
    };
    for (const auto& row : rows) {
        const XkbKeyboardLayout layout("evdev", "pc105", row.layout);
        ASSERT_TRUE(layout.hasKeymap()) << row.layout;
        EXPECT_EQ(layout.displayText(row.macKeyCode), row.text)
            << row.layout << ", mac key code " << row.macKeyCode;
    }
    const XkbKeyboardLayout de("evdev", "pc105", "de");
    EXPECT_EQ(keyName(6, &de), "Y");
    EXPECT_EQ(keyName(0x18, &de), "<24>") << "a dead key's name falls back to its number";
    EXPECT_EQ(keyName(49, &de), "Space") << "the fixed names come first";

    const XkbKeyboardLayout unknown("evdev", "pc105", "no-such-layout");
    EXPECT_FALSE(unknown.hasKeymap());
    EXPECT_EQ(unknown.displayText(0), std::nullopt);
}

TEST(XkbKeyboardLayout, ReadsTheLayoutOfTheDisplay) {
    if (!test::makeQtApplication(true)) {
        GTEST_SKIP() << "no X server: " << test::DesktopSession::skipReason();
    }
    const XkbKeyboardLayout current;
    ASSERT_TRUE(current.hasKeymap());
    EXPECT_EQ(current.displayText(0), "A") << "Xvfb starts with a US layout";
    EXPECT_EQ(current.displayText(0x2C), "/");
}

} // namespace
} // namespace hg
