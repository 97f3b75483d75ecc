#include "platform/linux/XkbKeyboardLayout.hpp"

#include "X11TestDesktop.hpp"
#include "hotkey/KeyName.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

struct Row {
    std::uint16_t macKeyCode;
    std::optional<std::string> text;
};

void expectTexts(const XkbKeyboardLayout& layout, std::initializer_list<Row> rows,
                 const char* name) {
    ASSERT_TRUE(layout.hasKeymap()) << name;
    for (const Row& row : rows) {
        EXPECT_EQ(layout.displayText(row.macKeyCode), row.text)
            << name << ", mac key code " << row.macKeyCode;
    }
}

TEST(XkbKeyboardLayout, NamesKeysAsEachLayoutLabelsThem) {
    expectTexts(XkbKeyboardLayout("evdev", "pc105", "us"),
                {{0, "A"},
                 {12, "Q"},
                 {40, "K"},
                 {0x12, "1"},
                 {0x29, ";"},
                 {0x2C, "/"},
                 {0x53, "1"}, // keypad 1 gives its digit, as on a Mac keypad
                 {0x43, "*"}, // keypad *
                 {0x69, {}},  // F13 gives no text
                 {36, {}},    // Return: a control character
                 {53, {}},    // Escape
                 {0x7F, {}}}, // no such key
                "us");
    expectTexts(XkbKeyboardLayout("evdev", "pc105", "fr"),
                {{0, "Q"}, {12, "A"}, {6, "W"}, {0x29, "M"}, {0x12, "&"}, {0x2E, ","}}, "fr");
    // The German layout's acute and circumflex keys are dead keys: no text,
    // so the key's name falls back to its number.
    expectTexts(XkbKeyboardLayout("evdev", "pc105", "de"),
                {{6, "Y"}, {16, "Z"}, {0x18, {}}, {0x32, {}}, {0x29, "Ö"}, {0x1B, "SS"}}, "de");
    expectTexts(XkbKeyboardLayout("evdev", "pc105", "ru"),
                {{0, "Ф"}, {12, "Й"}, {0x2E, "Ь"}, {0x12, "1"}}, "ru");
}

TEST(XkbKeyboardLayout, GivesKeyNamesTheirLayoutText) {
    const XkbKeyboardLayout de("evdev", "pc105", "de");
    EXPECT_EQ(keyName(6, &de), "Y");
    EXPECT_EQ(keyName(0x18, &de), "<24>") << "a dead key falls back";
    EXPECT_EQ(keyName(49, &de), "Space") << "the fixed names come first";
}

TEST(XkbKeyboardLayout, AnUnknownLayoutGivesNothing) {
    const XkbKeyboardLayout unknown("evdev", "pc105", "no-such-layout");
    EXPECT_FALSE(unknown.hasKeymap());
    EXPECT_EQ(unknown.displayText(0), std::nullopt);
}

TEST(XkbKeyboardLayout, ReadsTheLayoutOfTheDisplay) {
    if (test::X11TestDesktop::shared() == nullptr) {
        GTEST_SKIP() << "no X server: " << test::X11TestDesktop::skipReason();
    }
    const XkbKeyboardLayout current;
    ASSERT_TRUE(current.hasKeymap());
    EXPECT_EQ(current.displayText(0), "A") << "Xvfb starts with a US layout";
    EXPECT_EQ(current.displayText(0x2C), "/");
}

} // namespace
} // namespace hg
