#include "apps/CaseFold.hpp"
#include "apps/Utf8.hpp"

#include <gtest/gtest.h>
#include <string>

namespace hg {
namespace {

TEST(Utf8, AcceptsWellFormedAndRejectsEveryIllFormedKind) {
    struct Row {
        std::string bytes;
        bool valid;
        const char* what;
    };
    const std::vector<Row> rows = {
        {"", true, "empty"},
        {"{\"in_call\":false}", true, "ASCII"},
        {"\xC3\xA9", true, "two bytes"},
        {"\xE2\x82\xAC", true, "three bytes"},
        {"\xF0\x9F\x8E\xA4", true, "four bytes"},
        {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", true, "U+FFFF and U+10FFFF"},
        {std::string("a\0b", 3), true, "NUL is a character"},
        {"\x80", false, "lone continuation"},
        {"\xC3", false, "truncated two"},
        {"\xE2\x82", false, "truncated three"},
        {"\xC3\x28", false, "bad continuation"},
        {"\xC0\x80", false, "overlong NUL"},
        {"\xC1\xBF", false, "overlong two"},
        {"\xE0\x80\xAF", false, "overlong three"},
        {"\xF0\x80\x80\xAF", false, "overlong four"},
        {"\xED\xA0\x80", false, "high surrogate"},
        {"\xED\xBF\xBF", false, "low surrogate"},
        {"\xF4\x90\x80\x80", false, "above U+10FFFF"},
        {"\xF5\x80\x80\x80", false, "F5 lead"},
        {"\xFF", false, "FF"},
        {"ok\xE2\x82\xACok\xE2", false, "truncated at the end"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8::isValid(row.bytes), row.valid) << row.what;
    }
}

TEST(CaseFold, MatchesAsThePlatformsCaseInsensitiveComparison) {
    struct Row {
        const char* a;
        const char* b;
        bool same;
    };
    const std::vector<Row> rows = {
        {"Mute Audio", "mute audio", true},
        {"UNMUTE AUDIO", "Unmute Audio", true},
        {"Mute Audio", "Mute  Audio", false},
        {"Mute Audio", "Unmute Audio", false},
        {"", "", true},
        {"a", "", false},
        {"\xC3\x84rger", "\xC3\xA4RGER", true}, // Ärger
        {"Stra\xC3\x9F"
         "e",
         "STRASSE", true}, // Straße
        {"\xCE\xA3\xCE\x99\xCE\x93\xCE\x9C\xCE\x91", "\xCF\x83\xCE\xB9\xCE\xB3\xCE\xBC\xCE\xB1",
         true},
        {"\xD0\x97\xD0\x92\xD0\xA3\xD0\x9A", "\xD0\xB7\xD0\xB2\xD1\x83\xD0\xBA", true}, // ЗВУК
        {"\xC4\x80", "\xC4\x81", true},                                                 // Ā ā
        {"\xFF", "\xFF", true},
        {"\xFF", "\xFE", false},
        {"a\xFF", "A\xFF", true},
        {"@", "`", false},
        {"[", "{", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(caseInsensitiveEqual(row.a, row.b), row.same) << row.a << " | " << row.b;
        EXPECT_EQ(caseInsensitiveEqual(row.b, row.a), row.same) << row.b << " | " << row.a;
    }
}

} // namespace
} // namespace hg
