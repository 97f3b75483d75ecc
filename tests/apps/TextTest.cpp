#include "apps/CaseFold.hpp"
#include "apps/TupleState.hpp"
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
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xA4", true, "two, three and four bytes"},
        {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", true, "U+FFFF and U+10FFFF"},
        {std::string("a\0b", 3), true, "NUL is a character"},
        {"\x80", false, "lone continuation"},
        {"\xC3", false, "truncated two"},
        {"\xC3\x28", false, "bad continuation"},
        {"\xC1\xBF", false, "overlong two"},
        {"\xE0\x80\xAF", false, "overlong three"},
        {"\xF0\x80\x80\xAF", false, "overlong four"},
        {"\xED\xA0\x80", false, "surrogate"},
        {"\xF4\x90\x80\x80", false, "above U+10FFFF"},
        {"\xF5\x80\x80\x80", false, "F5 lead"},
        {"ok\xE2\x82\xACok\xE2\x82", false, "truncated at the end"},
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
        {"Mute Audio", "Mute  Audio", false},
        {"a", "", false},
        {"@", "`", false},
        {"[", "{", false},
        {"Ärger", "äRGER", true},
        {"Straße", "STRASSE", true},
        {"ΣΙΓΜΑ", "σιγμα", true},
        {"ЗВУК", "звук", true},
        {"Ā", "ā", true},
        {"a\xFF", "A\xFF", true},
        {"\xFF", "\xFE", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(caseInsensitiveEqual(row.a, row.b), row.same) << row.a << " | " << row.b;
        EXPECT_EQ(caseInsensitiveEqual(row.b, row.a), row.same) << row.b << " | " << row.a;
    }
}

// {"in_call": false} with `arrays` nested arrays beside it.
std::string nested(std::size_t arrays) {
    return R"({"in_call": false, "x": )" + std::string(arrays, '[') + std::string(arrays, ']') +
           "}";
}

// {"in_call": false} padded to `size` bytes.
std::string padded(std::size_t size) {
    const std::string head = R"({"in_call": false, "pad": ")";
    return head + std::string(size - head.size() - 2, ' ') + "\"}";
}

TEST(TupleState, DecodesOnlyTheDocumentedShape) {
    using S = MeetingStatus;
    struct Row {
        std::string output;
        MeetingStatus status;
    };
    const std::vector<Row> rows = {
        {R"({"in_call": true, "call": {"muted": true}})", S::onMute},
        {R"({"in_call": true, "call": {"muted": false}})", S::offMute},
        {R"({"in_call": false, "call": 7})", S::noMeeting},
        {"\n { \"in_call\" : true , \"call\" : { \"muted\" : true , \"x\": [1] } , \"v\": null }\n",
         S::onMute},
        {R"({"in_call": true})", S::error},
        {R"({"in_call": true, "call": {}})", S::error},
        {R"({"in_call": true, "call": [{"muted": true}]})", S::error},
        {R"({"in_call": true, "call": {"muted": "true"}})", S::error},
        {R"({"in_call": true, "call": {"muted": 1}})", S::error},
        {R"({"in_call": 0})", S::error},
        {R"({"In_Call": false})", S::error},
        {R"([{"in_call": false}])", S::error},
        {"   ", S::error},
        {R"({"in_call": false)", S::error},
        {R"({"in_call": false} trailing)", S::error},
        {"{\"in_call\": false, \"name\": \"\xC3\xA9\"}", S::noMeeting},
        {"{\"in_call\": false, \"name\": \"\xFF\"}", S::error},
        {std::string("{\"in_call\": false}\0garbage", 26), S::error},
        {std::string(10000, '[') + std::string(10000, ']'), S::error},
        // At most 32 levels of nesting, at most 64 KiB.
        {nested(31), S::noMeeting},
        {nested(32), S::error},
        {padded(64 * 1024), S::noMeeting},
        {padded(64 * 1024 + 1), S::error},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decodeTupleState(row.output), row.status) << row.output.substr(0, 80);
    }
}

} // namespace
} // namespace hg
