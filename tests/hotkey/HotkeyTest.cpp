#include "hotkey/Hotkey.hpp"

#include "hotkey/KeyName.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <gtest/gtest.h>
#include <string>

namespace hg {
namespace {

void storeData(FakeUserDefaults& defaults, const std::string& text) {
    defaults.setData(Hotkey::defaultsKey, Bytes(text.begin(), text.end()));
}

TEST(HotkeyDecode, FollowsTheKeyedDecodingRules) {
    struct Row {
        const char* json;
        std::optional<Hotkey> expected;
    };
    const Row rows[] = {
        {R"({"keyCode":40,"modifiers":1310720})", Hotkey{40, 0x140000}},
        {R"({"modifiers":1310720,"keyCode":40})", Hotkey{40, 0x140000}},
        {R"({"keyCode":40,"modifiers":1310720,"x":1})", Hotkey{40, 0x140000}},
        {R"( { "keyCode" : 65535 , "modifiers" : 8388608 } )", Hotkey{0xFFFF, 0x800000}},
        {R"({"keyCode":0,"modifiers":0})", Hotkey{0, 0}},
        {R"({"keyCode":1,"modifiers":18446744073709551615})", Hotkey{1, UINT64_MAX}},
        {R"({"keyCode":1,"modifiers":9223372036854775808})", Hotkey{1, 1ULL << 63}},
        {R"({"keyCode":40.0,"modifiers":1.31072e6})", Hotkey{40, 0x140000}},
        {R"({"keyCode":65536,"modifiers":0})", std::nullopt},
        {R"({"keyCode":70000,"modifiers":0})", std::nullopt},
        {R"({"keyCode":-1,"modifiers":0})", std::nullopt},
        {R"({"keyCode":1,"modifiers":-1})", std::nullopt},
        {R"({"keyCode":1,"modifiers":18446744073709551616})", std::nullopt},
        {R"({"keyCode":40.5,"modifiers":0})", std::nullopt},
        {R"({"keyCode":40,"modifiers":0.5})", std::nullopt},
        {R"({"keyCode":"40","modifiers":0})", std::nullopt},
        {R"({"keyCode":true,"modifiers":0})", std::nullopt},
        {R"({"keyCode":null,"modifiers":0})", std::nullopt},
        {R"({"keyCode":40})", std::nullopt},
        {R"({"modifiers":0})", std::nullopt},
        {R"({})", std::nullopt},
        {R"([40,1310720])", std::nullopt},
        {R"(40)", std::nullopt},
        {R"("fn")", std::nullopt},
        {R"({"keyCode":40,"modifiers":1310720)", std::nullopt},
        {R"({"keyCode":40,"modifiers":1310720}x)", std::nullopt},
        {"", std::nullopt},
        {"\xff\xfe", std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Hotkey::fromJson(row.json), row.expected) << row.json;
    }
}

TEST(HotkeyLoad, FallsBackToFnAloneWithoutWritingAnything) {
    FakeUserDefaults defaults;
    EXPECT_EQ(Hotkey::load(defaults), (Hotkey{0xFFFF, 0x800000}));

    defaults.setObject(Hotkey::defaultsKey, std::string(R"({"keyCode":40,"modifiers":0})"));
    EXPECT_EQ(Hotkey::load(defaults), Hotkey::defaultHotkey()) << "a text value is not data";

    storeData(defaults, R"({"keyCode":70000,"modifiers":0})");
    const int writes = defaults.writeCount();
    EXPECT_EQ(Hotkey::load(defaults), Hotkey::defaultHotkey());
    EXPECT_EQ(defaults.writeCount(), writes);
    EXPECT_TRUE(defaults.dataForKey(Hotkey::defaultsKey).has_value()) << "bad value stays";
}

TEST(HotkeySave, WritesCompactJsonKeyCodeFirstAndLoadsBackEqual) {
    FakeUserDefaults defaults;
    const Hotkey controlCommandK{40, 1310720};
    controlCommandK.save(defaults);
    const auto data = defaults.dataForKey("mute_hotkey_v2");
    ASSERT_TRUE(data.has_value());
    EXPECT_EQ(std::string(data->begin(), data->end()), R"({"keyCode":40,"modifiers":1310720})");
    EXPECT_EQ(Hotkey::load(defaults), controlCommandK);

    const Hotkey odd{7, UINT64_MAX};
    odd.save(defaults);
    EXPECT_EQ(Hotkey::load(defaults), odd);
}

TEST(Hotkey, EqualityComparesAllModifierBits) {
    EXPECT_NE((Hotkey{40, 0x100000}), (Hotkey{40, 0x100001}));
    EXPECT_NE((Hotkey{40, 0x100000}), (Hotkey{41, 0x100000}));
}

TEST(HotkeyDisplay, ModifiersInFixedOrderThenKeyName) {
    const FakeKeyboardLayout layout;
    struct Row {
        Hotkey hotkey;
        const char* expected;
    };
    const Row rows[] = {
        {{0xFFFF, 0x800000}, "fn"},
        {{0xFFFF, 0}, "None"},
        {{0xFFFF, 0x1}, "None"},
        {{0xFFFF, 0x1E0000}, "⌃⌥⇧⌘"},
        {{0xFFFF, 0x9E0000}, "⌃⌥⇧⌘fn"},
        {{0xFFFF, 0x820000}, "⇧fn"},
        {{40, 0xC0000}, "⌃⌥K"},
        {{40, 0x120000}, "⇧⌘K"},
        {{49, 0x100000}, "⌘Space"},
        {{96, 0}, "F5"},
        {{0, 0}, "A"},
        {{18, 0x40000}, "⌃1"},
        {{105, 0}, "<105>"},
        {{40, 0x100000 | 0x10000 | 0x1}, "⌘K"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.hotkey.displayString(&layout), row.expected)
            << row.hotkey.keyCode << " " << row.hotkey.modifiers;
    }
    EXPECT_EQ((Hotkey{40, 0x100000}).displayString(nullptr), "⌘<40>");
}

// A layout on which every key reads "Ж": special keys must not consult it.
class EveryKeyLayout final : public KeyboardLayout {
public:
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t) const override {
        return "Ж";
    }
};

class EmptyTextLayout final : public KeyboardLayout {
public:
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t) const override {
        return std::string();
    }
};

TEST(KeyName, SpecialKeysReadTheSameOnEveryLayout) {
    const EveryKeyLayout layout;
    struct Row {
        std::uint16_t code;
        const char* name;
    };
    const Row rows[] = {
        {36, "↩"},    {48, "⇥"},    {49, "Space"}, {51, "⌫"},   {53, "⎋"},   {96, "F5"},
        {97, "F6"},   {98, "F7"},   {99, "F3"},    {100, "F8"}, {101, "F9"}, {103, "F11"},
        {109, "F10"}, {111, "F12"}, {115, "↖"},    {116, "⇞"},  {117, "⌦"},  {118, "F4"},
        {119, "↘"},   {120, "F2"},  {121, "⇟"},    {122, "F1"}, {123, "←"},  {124, "→"},
        {125, "↓"},   {126, "↑"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(keyName(row.code, &layout), row.name) << row.code;
    }
    EXPECT_EQ(std::size(rows), 26U);
    EXPECT_EQ(keyName(0, &layout), "Ж");
    EXPECT_EQ(keyName(102, &layout), "Ж") << "102 is not in the table";
}

TEST(KeyName, FallsBackToTheNumberInAngleBrackets) {
    const FakeKeyboardLayout us;
    const EmptyTextLayout empty;
    EXPECT_EQ(keyName(105, &us), "<105>");
    EXPECT_EQ(keyName(0, nullptr), "<0>");
    EXPECT_EQ(keyName(40, &empty), "<40>");
    EXPECT_EQ(keyName(65534, &us), "<65534>");
}

TEST(FakeKeyboardLayout, GivesUsAnsiUpperCaseText) {
    const FakeKeyboardLayout us;
    EXPECT_EQ(us.displayText(0), "A");
    EXPECT_EQ(us.displayText(40), "K");
    EXPECT_EQ(us.displayText(18), "1");
    EXPECT_EQ(us.displayText(29), "0");
    EXPECT_EQ(us.displayText(47), ".");
    EXPECT_EQ(us.displayText(50), "`");
    EXPECT_EQ(us.displayText(92), "9");
    EXPECT_EQ(us.displayText(55), std::nullopt);
    EXPECT_EQ(us.displayText(105), std::nullopt);
}

} // namespace
} // namespace hg
