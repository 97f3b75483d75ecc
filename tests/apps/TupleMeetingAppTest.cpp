#include "apps/TupleMeetingApp.hpp"

#include "FixtureDir.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeFileSystem.hpp"
#include "platform/fake/FakeProcessRunner.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/posix/PosixFileSystem.hpp"
#include "platform/posix/PosixProcessRunner.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Lines = std::vector<std::string>;
using S = MeetingStatus;

// Tuple running, its tool one of the fixture scripts, run for real.
struct RealTuple {
    FixtureDir fixtures;
    FakeRunningApplications apps;
    PosixFileSystem files;
    PosixProcessRunner runner{std::chrono::milliseconds(400)};
    BufferLineSink out;

    RealTuple() { apps.add("app.tuple.app", 77); }
    TupleMeetingApp tool(const std::string& script) {
        return TupleMeetingApp(fixtures.path(script), apps, files, runner, out);
    }
};

TEST(TupleMeetingApp, FetchReadsTheToolsState) {
    struct Row {
        const char* script;
        MeetingStatus status;
        Lines printed;
    };
    const std::vector<Row> rows = {
        {"state-muted.sh", S::onMute, {}},
        {"state-unmuted.sh", S::offMute, {}},
        {"state-off-warning.sh",
         S::noMeeting,
         {"Tuple CLI 'state --format json' stderr: warning: old tool"}},
        {"fail-3.sh",
         S::error,
         {"Tuple CLI 'state --format json' failed: exit=3 stderr=no call in progress"}},
        {"empty.sh", S::error, {}},
        {"invalid-utf8.sh", S::error, {}},
        {"big-output.sh",
         S::error,
         {"Tuple CLI 'state --format json' stderr: " + std::string(4u << 20, 'e')}},
        {"not-executable.sh", S::error, {"Tuple CLI error: Permission denied"}},
        {"hang.sh", S::error, {"Tuple CLI 'state --format json' failed: exit=9 stderr=hanging"}},
        {"hang-closed.sh", S::error, {"Tuple CLI 'state --format json' failed: exit=9 stderr="}},
        {"signal-self.sh", S::error, {"Tuple CLI 'state --format json' failed: exit=15 stderr="}},
    };
    RealTuple t;
    for (const auto& row : rows) {
        auto app = t.tool(row.script);
        EXPECT_EQ(app.fetchStatus(), row.status) << row.script;
        EXPECT_EQ(t.out.take(), row.printed) << row.script;
    }
}

TEST(TupleMeetingApp, RunCLIGivesOutputOnlyForAnExitStatusOfZeroAndUTF8) {
    RealTuple t;
    auto big = t.tool("big-output.sh");
    const auto output = big.runCLI({});
    ASSERT_TRUE(output.has_value());
    EXPECT_EQ(*output, std::string(4u << 20, 'o'));
    t.out.clear();

    auto invalid = t.tool("invalid-utf8.sh");
    EXPECT_EQ(invalid.runCLI({"0"}), std::nullopt);
    EXPECT_TRUE(t.out.take().empty()) << "standard error that is not UTF-8 is not printed";
    EXPECT_EQ(invalid.runCLI({"2"}), std::nullopt);
    EXPECT_EQ(t.out.take(), Lines{"Tuple CLI '2' failed: exit=2 stderr="});

    EXPECT_EQ(t.tool("empty.sh").runCLI({}), std::string()) << "empty output is a result";

    EXPECT_EQ(t.tool("missing.sh").runCLI({"state"}), std::nullopt);
    EXPECT_EQ(t.out.take(), Lines{"Tuple CLI error: No such file or directory"});
}

TEST(TupleMeetingApp, ToggleRunsTheMatchingCommand) {
    RealTuple t;
    auto app = t.tool("echo-args.sh");
    EXPECT_EQ(app.toggleMute(S::onMute), S::offMute);
    EXPECT_EQ(t.out.take(),
              (Lines{"Tuple toggleMute: fromStatus=onMute", "Tuple toggleMute: sending 'unmute'",
                     "Tuple CLI 'call unmute' stderr: call unmute"}));
    EXPECT_EQ(app.toggleMute(S::offMute), S::offMute);
    EXPECT_EQ(t.out.take(),
              (Lines{"Tuple toggleMute: fromStatus=offMute", "Tuple toggleMute: sending 'mute'",
                     "Tuple CLI 'call mute' stderr: call mute"}));

    t.apps.clear(); // not tested by the toggle
    auto empty = t.tool("empty.sh");
    EXPECT_EQ(empty.toggleMute(S::offMute), S::offMute) << "an empty output is success";
    t.out.clear();

    auto failing = t.tool("fail-3.sh");
    EXPECT_EQ(failing.toggleMute(S::onMute), S::error);
    EXPECT_EQ(t.out.take().back(),
              "Tuple CLI 'call unmute' failed: exit=3 stderr=no call in progress");
    auto broken = t.tool("not-executable.sh");
    EXPECT_EQ(broken.toggleMute(S::offMute), S::error);
    EXPECT_EQ(t.out.take().back(), "Tuple CLI error: Permission denied");
}

TEST(TupleMeetingApp, ToggleOutsideAMeetingRunsNothing) {
    FakeRunningApplications apps;
    FakeFileSystem files;
    FakeProcessRunner runner;
    BufferLineSink out;
    TupleMeetingApp app("/usr/local/bin/tuple", apps, files, runner, out);
    for (const auto status : {S::notRunning, S::noMeeting, S::setupError, S::error}) {
        EXPECT_EQ(app.toggleMute(status), status);
        EXPECT_EQ(out.take(),
                  (Lines{"Tuple toggleMute: fromStatus=" + std::string(toString(status)),
                         "Tuple toggleMute: not in mute/unmute state, bailing"}));
    }
    EXPECT_TRUE(runner.runs().empty());
}

TEST(TupleMeetingApp, RunningAndToolTestsComeBeforeTheTool) {
    FakeRunningApplications apps;
    FakeFileSystem files;
    FakeProcessRunner runner([](const std::string&, const std::vector<std::string>&) {
        return ProcessResult{std::nullopt, 0, R"({"in_call":false})", ""};
    });
    BufferLineSink out;
    TupleMeetingApp app("/usr/local/bin/tuple", apps, files, runner, out);

    EXPECT_EQ(app.fetchStatus(), S::notRunning) << "not running, tool missing";
    EXPECT_FALSE(app.needsSetup());
    apps.add("com.other", 1);
    apps.add("APP.TUPLE.APP", 2);
    EXPECT_EQ(app.fetchStatus(), S::notRunning);
    apps.add("app.tuple.app", 3);
    EXPECT_EQ(app.fetchStatus(), S::setupError);
    EXPECT_TRUE(app.needsSetup());
    EXPECT_TRUE(runner.runs().empty());

    files.add("/usr/local/bin/tuple");
    EXPECT_FALSE(app.needsSetup());
    EXPECT_EQ(app.fetchStatus(), S::noMeeting);
    ASSERT_EQ(runner.runs().size(), 1u);
    EXPECT_EQ(runner.runs()[0].executable, "/usr/local/bin/tuple");
    EXPECT_EQ(runner.runs()[0].arguments, (std::vector<std::string>{"state", "--format", "json"}));
    EXPECT_TRUE(out.lines().empty());
}

TEST(TupleMeetingApp, MeetingAppAnswers) {
    FakeRunningApplications apps;
    FakeFileSystem files;
    FakeProcessRunner runner;
    BufferLineSink out;
    TupleMeetingApp app("/usr/local/bin/tuple", apps, files, runner, out);
    EXPECT_EQ(app.name(), "Tuple");
    EXPECT_EQ(app.setupWindowTitle(), "HushGremlin - Tuple CLI");
    int closed = 0;
    const auto view = app.makeSetupView([&] { ++closed; });
    EXPECT_EQ(view.kind, SetupView::Kind::tupleCLI);
    ASSERT_TRUE(view.closeAction);
    view.closeAction();
    EXPECT_EQ(closed, 1);
}

} // namespace
} // namespace hg
