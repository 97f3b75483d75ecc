#pragma once

#include "core/MeetingApp.hpp"
#include "ports/FileSystem.hpp"
#include "ports/LineSink.hpp"
#include "ports/ProcessRunner.hpp"
#include "ports/RunningApplications.hpp"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace hg {

// Tuple (bundle "app.tuple.app"), read and toggled by running its command-line
// tool at `cliPath` as a child process: "state --format json" reads the state,
// "call mute" and "call unmute" toggle. Every call runs the tool afresh and
// blocks until it has exited; failures are printed and end as error.
//
// The tool answers a local question in milliseconds, and the user interface
// waits while it runs: a state read that takes longer than stateReadTimeout
// is ended, and the next reads answer error without running the tool, for
// about half a minute of once-a-second reads. Toggles, which the user asks
// for, always run it, for at most commandTimeout. A tool ended by a signal is
// reported with the signal's number ("failed: signal=15").
class TupleMeetingApp final : public MeetingApp {
public:
    static constexpr std::chrono::milliseconds stateReadTimeout{250};
    static constexpr std::chrono::milliseconds commandTimeout{1000};
    static constexpr int stateReadsSkippedAfterTimeout = 30;
    // A tool's standard error is printed up to this many bytes, then "…" and
    // the whole text's size: a tool that floods it does not flood the log.
    static constexpr std::size_t maxLoggedErrorBytes = 4096;

    TupleMeetingApp(std::string cliPath, RunningApplications& applications, FileSystem& files,
                    ProcessRunner& processes, LineSink& out);

    [[nodiscard]] std::string name() const override { return "Tuple"; }

    // notRunning, setupError (tool missing), or what the tool's state says.
    MeetingStatus fetchStatus() override;
    // A read that timed out, or was skipped after one: no reading at all, so
    // a call in progress is not taken for a call left (and joined again).
    [[nodiscard]] bool answeredLate() const override { return answeredLate_; }

    // "call unmute" from onMute, "call mute" from offMute; offMute when the
    // tool succeeded, error when not. Any other `fromStatus` is returned as it
    // is and nothing runs. Runs even when Tuple is not running.
    MeetingStatus toggleMute(MeetingStatus fromStatus) override;

    // While Tuple runs without its tool.
    bool needsSetup() override;

    [[nodiscard]] SetupView makeSetupView(std::function<void()> closeAction) const override {
        return SetupView{SetupView::Kind::tupleCLI, std::move(closeAction)};
    }
    [[nodiscard]] std::string setupWindowTitle() const override {
        return "HushGremlin - Tuple CLI";
    }

    [[nodiscard]] const std::string& cliPath() const { return cliPath_; }

    // Runs the tool with `arguments`. Its standard output when it exits with
    // status 0 (an empty text is a result; output that is not UTF-8 is none);
    // none when it cannot start or fails, with the reason printed.
    std::optional<std::string> runCLI(const std::vector<std::string>& arguments,
                                      std::chrono::milliseconds timeout = commandTimeout);

private:
    bool isTupleRunning() const;

    std::string cliPath_;
    RunningApplications& applications_;
    FileSystem& files_;
    ProcessRunner& processes_;
    LineSink& out_;
    bool lastRunTimedOut_ = false;
    int stateReadsToSkip_ = 0;
    bool answeredLate_ = false;
};

} // namespace hg
