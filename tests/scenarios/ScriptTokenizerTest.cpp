#include "shells/sim/ScriptTokenizer.hpp"

#include <gtest/gtest.h>

namespace hg::sim {
namespace {

std::vector<std::string> wordsOf(const ScriptLine& line) {
    std::vector<std::string> words;
    for (const auto& w : line.words()) {
        words.push_back(w.text);
    }
    return words;
}

TEST(ScriptLine, SplitsOnBlanksAndKeepsQuotedWordsWhole) {
    const ScriptLine line("  menu pick \"Toggle Mute\"\t ");
    EXPECT_EQ(wordsOf(line), (std::vector<std::string>{"menu", "pick", "Toggle Mute"}));
    EXPECT_EQ(line.trimmed(), "menu pick \"Toggle Mute\"");
    const ScriptLine empty("\"\" x");
    EXPECT_EQ(wordsOf(empty), (std::vector<std::string>{"", "x"}));
}

TEST(ScriptLine, BlankAndCommentLinesAreEmpty) {
    for (const char* text : {"", "   ", "\t# a comment", "#", "  #zoom start\r"}) {
        EXPECT_TRUE(ScriptLine(text).isEmpty()) << text;
    }
    EXPECT_FALSE(ScriptLine("zoom start # not a comment here").isEmpty());
}

TEST(ScriptLine, RestIsTheRawTextAsWritten) {
    const ScriptLine state(R"(tuple state  {"in_call": true,  "call": {}} )");
    EXPECT_EQ(state.rest(2), R"({"in_call": true,  "call": {}} )");
    EXPECT_EQ(state.rest(7), "");
    const ScriptLine result("tuple result 3 \"quoted\" stays\r");
    EXPECT_EQ(result.rest(3), "\"quoted\" stays");
    EXPECT_EQ(ScriptLine("tuple result 0").rest(3), "");
}

TEST(ScriptLine, BadQuotingIsAnErrorOnlyWhereWordsAreNeeded) {
    const ScriptLine open(R"(tuple state "oops)");
    EXPECT_FALSE(open.isEmpty());
    EXPECT_NO_THROW(open.checkWords(2));
    EXPECT_THROW(open.checkWords(), ScriptError);
    EXPECT_EQ(open.rest(2), "\"oops");
    EXPECT_THROW(ScriptLine(R"(menu pick "Quit"x)").checkWords(), ScriptError);
    EXPECT_THROW(ScriptLine(R"("launch)").checkWords(1), ScriptError);
}

TEST(ScriptNumbers, IntegersAreDecimalOrHex) {
    EXPECT_EQ(parseInteger("40"), 40);
    EXPECT_EQ(parseInteger("-25204"), -25204);
    EXPECT_EQ(parseInteger("0x800000"), 0x800000);
    EXPECT_EQ(parseInteger("-9223372036854775808"), INT64_MIN);
    for (const char* bad : {"", "-", "0x", "12a", "4 0", "+3", "9223372036854775808", "1.5"}) {
        EXPECT_EQ(parseInteger(bad), std::nullopt) << bad;
    }
    EXPECT_EQ(parseUnsigned("0xFFFFFFFFFFFFFFFF"), UINT64_MAX);
    EXPECT_EQ(parseUnsigned("-1"), std::nullopt);
}

TEST(ScriptNumbers, SecondsAreExactToTheMicrosecond) {
    EXPECT_EQ(parseSeconds("1"), Duration(1'000'000));
    EXPECT_EQ(parseSeconds("0.15"), Duration(150'000));
    EXPECT_EQ(parseSeconds(".5"), Duration(500'000));
    EXPECT_EQ(parseSeconds("2."), Duration(2'000'000));
    EXPECT_EQ(parseSeconds("86400"), Duration(86'400'000'000));
    EXPECT_EQ(parseSeconds("0.000001"), Duration(1));
    for (const char* bad : {"", ".", "-1", "1e3", "0.0000001", "1.2.3", "a", "1 "}) {
        EXPECT_EQ(parseSeconds(bad), std::nullopt) << bad;
    }
}

} // namespace
} // namespace hg::sim
