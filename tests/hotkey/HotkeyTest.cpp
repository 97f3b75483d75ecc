#include "hotkey/Hotkey.hpp"

#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "hotkey/KeyName.hpp"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace hg {
namespace {

TEST(HotkeyJson, FollowsTheKeyedDecodingRulesAndWritesKeyCodeFirst) {
    struct Row {
        const char* json;
        std::optional<Hotkey> expected;
    };
    const Row rows[] = {
        {R"({"keyCode":40,"modifiers":1310720})", Hotkey{40, 0x140000}},
        {R"({"modifiers":1310720,"keyCode":40})", Hotkey{40, 0x140000}},
        {R"({"keyCode":40,"modifiers":1310720,"x":1})", Hotkey{40, 0x140000}},
        {R"( { "keyCode" : 65535 , "modifiers" : 8388608 } )", Hotkey{0xFFFF, 0x800000}},
        {R"({"keyCode":1,"modifiers":18446744073709551615})", Hotkey{1, UINT64_MAX}},
        {R"({"keyCode":1,"modifiers":9223372036854775808})", Hotkey{1, 1ULL << 63}},
        {R"({"keyCode":40.0,"modifiers":1.31072e6})", Hotkey{40, 0x140000}},
        {R"({"keyCode":65536,"modifiers":0})", std::nullopt},
        {R"({"keyCode":-1,"modifiers":0})", std::nullopt},
        {R"({"keyCode":1,"modifiers":-1})", std::nullopt},
        {R"({"keyCode":1,"modifiers":18446744073709551616})", std::nullopt},
        {R"({"keyCode":40.5,"modifiers":0})", std::nullopt},
        {R"({"keyCode":40,"modifiers":0.5})", std::nullopt},
        {R"({"keyCode":"40","modifiers":0})", std::nullopt},
        {R"({"keyCode":40})", std::nullopt},
        {R"({"modifiers":0})", std::nullopt},
        {R"([40,1310720])", std::nullopt},
        {R"({"keyCode":40,"modifiers":1310720)", std::nullopt},
        {R"({"keyCode":40,"modifiers":1310720}x)", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Hotkey::fromJson(row.json), row.expected) << row.json;
    }
    EXPECT_EQ((Hotkey{40, 1310720}).toJson(), R"({"keyCode":40,"modifiers":1310720})");
    EXPECT_EQ(Hotkey::fromJson(Hotkey{7, UINT64_MAX}.toJson()), (Hotkey{7, UINT64_MAX}));
    using namespace std::string_view_literals;
    EXPECT_EQ(Hotkey::fromJson("{\"keyCode\":40,\"modifiers\":0}\0junk"sv), std::nullopt);
}

TEST(HotkeyLoad, FallsBackToFnAloneWithoutWritingAnything) {
    FakeUserDefaults defaults;
    EXPECT_EQ(Hotkey::load(defaults), (Hotkey{0xFFFF, 0x800000}));

    defaults.setObject(Hotkey::defaultsKey, std::string(R"({"keyCode":40,"modifiers":0})"));
    EXPECT_EQ(Hotkey::load(defaults), Hotkey::defaultHotkey()) << "a text value is not data";

    const std::string bad = R"({"keyCode":70000,"modifiers":0})";
    defaults.setData(Hotkey::defaultsKey, Bytes(bad.begin(), bad.end()));
    const int writes = defaults.writeCount();
    EXPECT_EQ(Hotkey::load(defaults), Hotkey::defaultHotkey());
    EXPECT_EQ(defaults.writeCount(), writes);
    EXPECT_TRUE(defaults.dataForKey(Hotkey::defaultsKey).has_value()) << "bad value stays";
    const std::string huge =
        R"({"keyCode":40,"modifiers":0,"x":")" + std::string(2000, 'x') + "\"}";
    defaults.setData(Hotkey::defaultsKey, Bytes(huge.begin(), huge.end()));
    EXPECT_EQ(Hotkey::load(defaults), Hotkey::defaultHotkey()) << "longer than a shortcut needs";

    // Decoded once per change of the stored bytes: every change is seen.
    for (const Hotkey stored : {Hotkey{40, 0x140000}, Hotkey{41, 0x140000}, Hotkey{41, 0x140000}}) {
        stored.save(defaults);
        EXPECT_EQ(Hotkey::load(defaults), stored);
    }
}

// Through the US layout fake, so its table is checked at a few points as well.
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
        {{0xFFFF, 0x9E0000}, "⌃⌥⇧⌘fn"},
        {{40, 0x120000}, "⇧⌘K"},
        {{40, 0x100000 | 0x10000 | 0x1}, "⌘K"},
        {{49, 0x100000}, "⌘Space"},
        {{18, 0x40000}, "⌃1"},
        {{50, 0}, "`"},
        {{92, 0}, "9"},
        {{55, 0}, "<55>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.hotkey.displayString(&layout), row.expected)
            << row.hotkey.keyCode << " " << row.hotkey.modifiers;
    }
    EXPECT_EQ((Hotkey{40, 0x100000}).displayString(nullptr), "⌘<40>");

    FakeKeyboardLayout pc;
    pc.notation = KeyboardLayout::ModifierNotation::names;
    EXPECT_EQ((Hotkey{0xFFFF, 0x9E0000}).displayString(&pc), "Ctrl+Alt+Shift+Super+Fn");
    EXPECT_EQ((Hotkey{40, 0x140000}).displayString(&pc), "Ctrl+Super+K");
    EXPECT_EQ((Hotkey{0xFFFF, 0}).displayString(&pc), "None");
}

// A layout that gives the same text for every key.
class FixedLayout final : public KeyboardLayout {
public:
    explicit FixedLayout(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t) const override {
        return text_;
    }

private:
    std::string text_;
};

TEST(KeyName, SpecialKeysIgnoreTheLayoutAndEmptyTextFallsBack) {
    const FixedLayout cyrillic("Ж");
    struct Row {
        std::uint16_t code;
        const char* name;
    };
    const Row rows[] = {
        {36, "↩"},  {49, "Space"}, {53, "⎋"},  {99, "F3"}, {111, "F12"}, {117, "⌦"},
        {121, "⇟"}, {122, "F1"},   {126, "↑"}, {0, "Ж"},   {102, "Ж"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(keyName(row.code, &cyrillic), row.name) << row.code;
    }
    const FixedLayout empty("");
    EXPECT_EQ(keyName(40, &empty), "<40>");
}

} // namespace
} // namespace hg
