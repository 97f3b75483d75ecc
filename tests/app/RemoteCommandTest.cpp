// What scripts can say to the program, whatever way they come in: command
// lines, links and the status they read back.
#include "app/RemoteCommand.hpp"

#include "app/StatusReport.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <vector>

namespace hg {
namespace {

std::optional<CommandLine> parse(std::vector<std::string_view> args) {
    return CommandLine::parse(args);
}

TEST(RemoteCommand, CommandLinesTakeOnlyTheWordsAndStatusAloneTakesOptions) {
    for (const std::string_view word :
         {"toggle", "mute", "unmute", "press", "release", "preferences", "status"}) {
        const auto line = parse({word});
        ASSERT_TRUE(line.has_value()) << word;
        EXPECT_EQ(toWord(line->command), word);
    }
    const auto follow = parse({"status", "--json", "--follow"});
    ASSERT_TRUE(follow.has_value());
    EXPECT_TRUE(follow->follow && follow->json);
    for (const auto& bad :
         std::vector<std::vector<std::string_view>>{{},
                                                    {"Mute"},
                                                    {"mute", "--json"},
                                                    {"status", "--json", "--json"},
                                                    {"status", "--follow=1"},
                                                    {"status", "extra"},
                                                    {"toggle", "$(reboot)"}}) {
        EXPECT_FALSE(parse(bad).has_value()) << (bad.empty() ? "" : bad.back());
    }
}

TEST(RemoteCommand, LinksNameOneActionAndNothingElse) {
    EXPECT_EQ(commandFromUrl("hushgremlin://mute"), RemoteCommand::mute);
    EXPECT_EQ(commandFromUrl("HushGremlin://toggle/"), RemoteCommand::toggle);
    EXPECT_EQ(commandFromUrl("hushgremlin://preferences"), RemoteCommand::preferences);
    EXPECT_EQ(commandFromUrl("hushgremlin://release"), RemoteCommand::release);
    EXPECT_EQ(commandFromUrl("hushgremlin://debug"), std::nullopt);
    using namespace std::string_view_literals;
    for (const std::string_view bad : std::vector<std::string_view>{
             "hushgremlin://status"sv, "hushgremlin://mute?x=1", "hushgremlin://mute/now",
             "hushgremlin://user@mute", "hushgremlin://mute:80", "hushgremlin:mute", "https://mute",
             "hushgremlin://", "hushgremlin://MUTE", "hushgremlin://mute//", "hushgremlin://mute#x",
             "hushgremlin://mute\0"sv}) {
        EXPECT_FALSE(commandFromUrl(bad).has_value()) << bad;
    }
}

TEST(StatusReport, BarsGetOneObjectWithTheFiveMembers) {
    const auto live = nlohmann::json::parse(StatusReport{MeetingStatus::offMute, "Zoom"}.json());
    EXPECT_EQ(live, nlohmann::json::parse(R"({"status":"offMute","app":"Zoom","text":"live",
        "tooltip":"Hush Gremlin: live in Zoom","class":"offMute"})"));
    const std::string absent = StatusReport{}.json();
    EXPECT_EQ(absent.find('\n'), std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(absent),
              nlohmann::json::parse(R"({"status":"unavailable","app":null,"text":"off",
        "tooltip":"Hush Gremlin: not running","class":"unavailable"})"));
    EXPECT_EQ(StatusReport{}.line(), "HushGremlin is not running");
    EXPECT_EQ((StatusReport{MeetingStatus::noMeeting, ""}.line()), "noMeeting");
    // A name that is not UTF-8 still makes valid JSON.
    EXPECT_TRUE(nlohmann::json::accept(StatusReport{MeetingStatus::onMute, "\xff"}.json()));
}

} // namespace
} // namespace hg
