// The command line a status bar, a key binding or a Stream Deck runs, against
// the desktop program with a call on a real audio server: explicit mute and
// unmute, and the status followed as a stream of JSON objects.

#include "PipeWireSession.hpp"

#include <QProcess>
#include <QSettings>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace hg::test {
namespace {

using Audio = PipeWireSession;

struct Answer {
    int exitCode = -1;
    std::string output;
    std::string error;
};

Answer hushgremlin(const QStringList& arguments) {
    QProcess client;
    client.start(QStringLiteral(HG_DESKTOP_PROGRAM), arguments);
    client.waitForFinished(15000);
    return {client.exitCode(), client.readAllStandardOutput().trimmed().toStdString(),
            client.readAllStandardError().trimmed().toStdString()};
}

// The status in a line of `status --follow --json`, with the other members
// checked.
std::string statusIn(const std::string& line) {
    const auto object = nlohmann::json::parse(line, nullptr, false);
    if (!object.is_object() || object.size() != 5 || !object["status"].is_string() ||
        !object["text"].is_string() || !object["tooltip"].is_string() ||
        object["class"] != object["status"] ||
        !(object["app"].is_string() || object["app"].is_null())) {
        return "malformed: " + line;
    }
    return object["status"].get<std::string>();
}

// The next status the follower prints.
std::string next(ChildProcess& follow) {
    return statusIn(follow.waitForLine("{").value_or(""));
}

TEST(Automation, MuteAndUnmuteEndInTheAskedStateAndTheStatusIsFollowed) {
    if (DesktopSession::shared() == nullptr) {
        GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
    }
    makeQtApplication();
    std::string whyNot;
    const auto server = Audio::start(whyNot);
    if (server == nullptr) {
        GTEST_SKIP() << whyNot;
    }
    const std::string config = DesktopSession::shared()->scratchDir() + "/automation-config";
    QSettings(QString::fromStdString(config + "/HushGremlin/HushGremlin.conf"),
              QSettings::IniFormat)
        .setValue("muteMicrophoneInOtherApps", true);

    // A bar starts before the program: it waits.
    ChildProcess follow({HG_DESKTOP_PROGRAM, "status", "--follow", "--json"});
    ASSERT_EQ(next(follow), "unavailable");

    Audio::setSourceMute(true);
    auto call = Audio::record();
    ChildProcess program(
        {"env", "XDG_CONFIG_HOME=" + config, "QT_QPA_PLATFORM=xcb", HG_DESKTOP_PROGRAM},
        DesktopSession::shared()->scratchDir() + "/automation.log");
    ASSERT_TRUE(waitUntil([] { return hushgremlin({"status"}).output == "onMute"; }));
    // The program's first status (the store's, "error") may come first.
    std::string first = next(follow);
    if (first == "error") {
        first = next(follow);
    }
    ASSERT_EQ(first, "onMute");

    const std::vector<std::pair<const char*, const char*>> steps{
        {"mute", "onMute"},    {"mute", "onMute"}, {"unmute", "offMute"},
        {"unmute", "offMute"}, {"mute", "onMute"},
    };
    for (const auto& [word, after] : steps) {
        const Answer answer = hushgremlin({QString::fromLatin1(word)});
        EXPECT_EQ(answer.exitCode, 0) << word << ": " << answer.error;
        EXPECT_EQ(hushgremlin({"status"}).output, after) << word;
        EXPECT_EQ(Audio::sourceMute(), std::string(after) == "onMute" ? "yes" : "no") << word;
    }
    EXPECT_EQ(next(follow), "offMute");
    EXPECT_EQ(next(follow), "onMute");
    EXPECT_EQ(nlohmann::json::parse(hushgremlin({"status", "--json"}).output)["app"], "Microphone");

    // The call ends (no meeting, or setup needed: this desktop has no
    // accessibility).
    call.reset();
    const std::string after = next(follow);
    EXPECT_THAT(after, ::testing::AnyOf("noMeeting", "setupError"));
    const Answer noCall = hushgremlin({"mute"});
    EXPECT_EQ(noCall.exitCode, 1);
    EXPECT_EQ(noCall.error, "No call to mute (status " + after + ")");
    EXPECT_EQ(noCall.output, "");

    // The program quits, and the bar keeps waiting for the next one.
    program.signal(SIGTERM);
    ASSERT_TRUE(program.waitForLine("Goodbye cruel world!"));
    EXPECT_EQ(next(follow), "unavailable");
    EXPECT_FALSE(follow.waitForExit(500ms));
    const Answer absent = hushgremlin({"unmute"});
    EXPECT_EQ(absent.exitCode, 1);
    EXPECT_EQ(absent.error, "HushGremlin is not running");
    EXPECT_THAT(absent.error, ::testing::Not(::testing::HasSubstr("invalid type")));
}

} // namespace
} // namespace hg::test
