#include "apps/TupleMeetingApp.hpp"

#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeFileSystem.hpp"
#include "backends/fake/FakeProcessRunner.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/posix/PosixFileSystem.hpp"
#include "backends/posix/PosixProcessRunner.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace hg {
namespace {

using Lines = std::vector<std::string>;
using S = MeetingStatus;

std::string fixture(const std::string& name) {
    return HG_APPS_FIXTURE_DIR "/" + name;
}

// Tuple running, its tool one of the fixture scripts, run for real.
struct RealTuple {
    FakeRunningApplications apps;
    PosixFileSystem files;
    PosixProcessRunner runner;
    BufferLineSink out;

    RealTuple() { apps.add("app.tuple.app", 77); }
    TupleMeetingApp tool(const std::string& script) {
        return TupleMeetingApp(fixture(script), apps, files, runner, out);
    }
};

TEST(TupleMeetingApp, FetchReadsTheToolsState) {
    struct Row {
        const char* script;
        MeetingStatus status;
        Lines printed;
    };
    const std::string failed = "Tuple CLI 'state --format json' failed: exit=";
    const std::string killed = "Tuple CLI 'state --format json' failed: signal=";
    const std::vector<Row> rows = {
        {"state-muted.sh", S::onMute, {}},
        {"state-unmuted.sh", S::offMute, {}},
        {"state-off-warning.sh",
         S::noMeeting,
         {"Tuple CLI 'state --format json' stderr: warning: old tool"}},
        {"fail-3.sh", S::error, {failed + "3 stderr=no call in progress"}},
        {"empty.sh", S::error, {}},
        {"invalid-utf8.sh", S::error, {}},
        {"big-output.sh",
         S::noMeeting,
         {"Tuple CLI 'state --format json' stderr: " + std::string(4096, 'e') +
          "\u2026 (4194304 bytes)"}},
        {"not-executable.sh", S::error, {"Tuple CLI error: Permission denied"}},
        {"missing.sh", S::setupError, {}},
        {"state-muted-child-holds-pipe.sh", S::onMute, {}},
        {"hang.sh", S::error, {killed + "9 (timed out) stderr=hanging"}},
        {"hang-closed.sh", S::error, {killed + "9 (timed out) stderr="}},
        {"signal-self.sh", S::error, {killed + "15 stderr="}},
        {"flood.sh", S::error, {}},
    };
    RealTuple t;
    for (const auto& row : rows) {
        auto app = t.tool(row.script);
        EXPECT_EQ(app.fetchStatus(), row.status) << row.script;
        EXPECT_EQ(t.out.take(), row.printed) << row.script;
    }
}

TEST(TupleMeetingApp, ToggleRunsTheMatchingCommandEvenWhenTupleIsNotRunning) {
    RealTuple t;
    t.apps.clear();
    auto app = t.tool("echo-args.sh");
    EXPECT_EQ(app.toggleMute(S::onMute), S::offMute);
    EXPECT_EQ(t.out.take(),
              (Lines{"Tuple toggleMute: fromStatus=onMute", "Tuple toggleMute: sending 'unmute'",
                     "Tuple CLI 'call unmute' stderr: call unmute"}));
    EXPECT_EQ(app.toggleMute(S::offMute), S::offMute);
    EXPECT_EQ(t.out.take().back(), "Tuple CLI 'call mute' stderr: call mute");

    EXPECT_EQ(t.tool("empty.sh").toggleMute(S::offMute), S::offMute) << "empty output is success";
    EXPECT_EQ(t.tool("fail-3.sh").toggleMute(S::onMute), S::error);
    EXPECT_EQ(t.out.take().back(),
              "Tuple CLI 'call unmute' failed: exit=3 stderr=no call in progress");
}

TEST(TupleMeetingApp, RunCLIGivesNoOutputThatIsNotUTF8) {
    RealTuple t;
    auto invalid = t.tool("invalid-utf8.sh");
    EXPECT_EQ(invalid.runCLI({"0"}), std::nullopt);
    EXPECT_TRUE(t.out.take().empty()) << "standard error that is not UTF-8 is not printed";
    EXPECT_EQ(invalid.runCLI({"2"}), std::nullopt);
    EXPECT_EQ(t.out.take(), Lines{"Tuple CLI '2' failed: exit=2 stderr="});
}

TEST(PosixProcessRunner, ChildGetsArgumentsEnvironmentAndDirectoryAndKeepsRawBytes) {
    PosixProcessRunner runner;
    ::setenv("HG_FIXTURE_PROBE", "probe value", 1);
    const auto env = runner.run(fixture("echo-env.sh"), {}, std::chrono::seconds(5));
    ::unsetenv("HG_FIXTURE_PROBE");
    EXPECT_FALSE(env.launchError.has_value());
    EXPECT_EQ(env.exitStatus, 0);
    EXPECT_EQ(env.standardOutput, "probe value|" + std::filesystem::current_path().string());

    const auto args =
        runner.run(fixture("echo-args.sh"), {"a b", "", "'c'", "$HOME"}, std::chrono::seconds(5));
    EXPECT_EQ(args.standardError, "a b  'c' $HOME");

    const auto raw = runner.run(fixture("invalid-utf8.sh"), {"4"}, std::chrono::seconds(5));
    EXPECT_EQ(raw.exitStatus, 4);
    EXPECT_EQ(raw.standardOutput, "{\"in_call\":false}\xFF");
    EXPECT_EQ(raw.standardError, "bad \xFF");
}

// Tuple's tool answering "not in a call", on fakes.
struct FakeTuple {
    FakeRunningApplications apps;
    FakeFileSystem files;
    FakeProcessRunner runner{[](const std::string&, const std::vector<std::string>&) {
        return ProcessResult{std::nullopt, 0, R"({"in_call":false})", ""};
    }};
    BufferLineSink out;
    TupleMeetingApp app{"/usr/local/bin/tuple", apps, files, runner, out};
};

TEST(TupleMeetingApp, AfterAStateReadTimesOutTheNextReadsSkipTheToolButTogglesRun) {
    FakeTuple t;
    t.apps.add("app.tuple.app", 3);
    t.files.add("/usr/local/bin/tuple");
    t.runner.setHandler([](const std::string&, const std::vector<std::string>&) {
        return ProcessResult{std::nullopt, 9, "", "", true};
    });
    EXPECT_EQ(t.app.fetchStatus(), S::error);
    EXPECT_TRUE(t.app.answeredLate());
    for (int i = 0; i < TupleMeetingApp::stateReadsSkippedAfterTimeout; ++i) {
        EXPECT_EQ(t.app.fetchStatus(), S::error);
        EXPECT_TRUE(t.app.answeredLate()) << "a skipped read is no reading";
    }
    EXPECT_EQ(t.runner.runs().size(), 1U);
    EXPECT_EQ(t.app.toggleMute(S::onMute), S::error);
    EXPECT_EQ(t.app.fetchStatus(), S::error);
    EXPECT_EQ(t.runner.runs().size(), 3U) << "the toggle and the read after the pause ran";
    t.runner.setHandler([](const std::string&, const std::vector<std::string>&) {
        return ProcessResult{std::nullopt, 0, "{\"in_call\":false}", "", false};
    });
    EXPECT_EQ(t.app.fetchStatus(), S::error) << "still skipping after the second time-out";
    for (int i = 1; i < TupleMeetingApp::stateReadsSkippedAfterTimeout; ++i) {
        (void)t.app.fetchStatus();
    }
    EXPECT_EQ(t.app.fetchStatus(), S::noMeeting);
    EXPECT_FALSE(t.app.answeredLate()) << "an answer in time is a reading again";
}

TEST(TupleMeetingApp, ToggleOutsideAMeetingRunsNothing) {
    FakeTuple t;
    for (const auto status : {S::notRunning, S::noMeeting, S::setupError, S::error}) {
        EXPECT_EQ(t.app.toggleMute(status), status);
        EXPECT_EQ(t.out.take(),
                  (Lines{"Tuple toggleMute: fromStatus=" + std::string(toString(status)),
                         "Tuple toggleMute: not in mute/unmute state, bailing"}));
    }
    EXPECT_TRUE(t.runner.runs().empty());
}

TEST(TupleMeetingApp, RunningAndToolTestsComeBeforeTheTool) {
    FakeTuple t;
    t.apps.add("APP.TUPLE.APP", 2);
    EXPECT_EQ(t.app.fetchStatus(), S::notRunning) << "not running, tool missing";
    EXPECT_FALSE(t.app.needsSetup());
    t.apps.add("app.tuple.app", 3);
    EXPECT_EQ(t.app.fetchStatus(), S::setupError);
    EXPECT_TRUE(t.app.needsSetup());
    EXPECT_TRUE(t.runner.runs().empty());

    t.files.add("/usr/local/bin/tuple");
    EXPECT_FALSE(t.app.needsSetup());
    EXPECT_EQ(t.app.fetchStatus(), S::noMeeting);
    EXPECT_EQ(t.runner.argumentLists(),
              (std::vector<std::vector<std::string>>{{"state", "--format", "json"}}));
    EXPECT_TRUE(t.out.lines().empty());
}

} // namespace
} // namespace hg
