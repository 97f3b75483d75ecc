#pragma once

#include "backends/fake/FakeFileSystem.hpp"
#include "backends/fake/FakeProcessRunner.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "shells/sim/SimOutput.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace hg::sim {

// The simulated Tuple application and its command-line tool. The tool
// answers "state --format json" with the call state and "call mute" /
// "call unmute" by changing it; it can be missing, broken (cannot be
// launched), made to print a given state, or made to exit with a given status
// and standard-error text.
class SimTuple {
public:
    static constexpr std::string_view bundleID = "app.tuple.app";

    enum class Tool : std::uint8_t { installed, missing, broken };
    enum class Call : std::uint8_t { off, muted, unmuted };

    // Runs the tool for `processes` and keeps its file in `files`.
    SimTuple(std::string cliPath, FakeRunningApplications& applications, FakeFileSystem& files,
             FakeProcessRunner& processes, SimOutput& out);
    SimTuple(const SimTuple&) = delete;
    SimTuple& operator=(const SimTuple&) = delete;

    [[nodiscard]] bool isRunning() const { return pid_.has_value(); }
    [[nodiscard]] Call call() const { return call_; }

    // Starts (or restarts) Tuple as process `pid`, not in a call.
    void start(ProcessId pid);
    // Ends the process and with it any call.
    void stop();
    void setTool(Tool tool);
    // Also ends a `printState` override.
    void setCall(Call call);
    // The state command prints exactly `text` until the next setCall().
    void printState(std::string text) { stateText_ = std::move(text); }
    // Every run exits with `status` and writes `standardError`; 0 and an
    // empty text are normal runs.
    void setResult(int status, std::string standardError);

private:
    ProcessResult run(const std::vector<std::string>& arguments);

    std::string cliPath_;
    FakeRunningApplications& applications_;
    FakeFileSystem& files_;
    FakeProcessRunner& processes_;
    SimOutput& out_;

    std::optional<ProcessId> pid_;
    Tool tool_ = Tool::installed;
    Call call_ = Call::off;
    std::optional<std::string> stateText_;
    int exitStatus_ = 0;
    std::string standardError_;
};

} // namespace hg::sim
