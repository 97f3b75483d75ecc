#pragma once

#include "ports/ProcessRunner.hpp"

#include <chrono>
#include <cstddef>

namespace hg {

// Runs child processes with posix_spawn. The child inherits the environment
// and working directory; its standard input is /dev/null, and standard
// output and error are read through pipes while it runs, so a child that
// writes more than a pipe holds never stalls. A child (with everything it
// started) that is still running when the time-out passes is killed with
// SIGKILL; the result then reads as ended by that signal (signal 9). A
// child that has exited is answered at once, even while a process it started
// still holds its pipes. A child ended by a signal is reported as such.
class PosixProcessRunner final : public ProcessRunner {
public:
    // The longest any run may take, whatever time-out its caller asks for.
    static constexpr std::chrono::milliseconds defaultTimeout{5000};

    // More than this per stream is read and dropped (and counted), so that a
    // runaway child costs neither memory nor the copying of its output.
    static constexpr std::size_t maxCapturedBytes = 1024 * 1024;

    explicit PosixProcessRunner(std::chrono::milliseconds longestTimeout = defaultTimeout)
        : longestTimeout_(longestTimeout) {}

    // A launch failure (missing file, no permission, not an executable) comes
    // back as launchError with the system's text, e.g. "Permission denied".
    ProcessResult run(const std::string& executable, const std::vector<std::string>& arguments,
                      std::chrono::milliseconds timeout) override;

private:
    std::chrono::milliseconds longestTimeout_;
};

} // namespace hg
