#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace hg {

struct ProcessResult {
    // Set when the process could not be started (the platform's description,
    // e.g. "No such file or directory"); the other fields are then empty.
    std::optional<std::string> launchError;
    // The exit status; for a process ended by a signal (also one killed at the
    // time-out), the signal number.
    int exitStatus = 0;
    // Raw bytes; not necessarily UTF-8. A runner may keep only the beginning
    // of a long stream: see the dropped counts.
    std::string standardOutput;
    std::string standardError;
    // Ended by the runner because it outlived the time-out.
    bool timedOut = false;
    // Ended by a signal: exitStatus is then the signal's number.
    bool endedBySignal = false;
    // Bytes the process wrote beyond what the runner kept.
    std::size_t droppedOutputBytes = 0;
    std::size_t droppedErrorBytes = 0;
};

// Runs child processes to completion, inheriting this process's environment
// and working directory.
class ProcessRunner {
public:
    virtual ~ProcessRunner() = default;

    // Runs `executable` with `arguments` (argv[1]...) and waits for it, at
    // most about `timeout`: a child still running then is ended and the
    // result says timedOut. Blocks.
    virtual ProcessResult run(const std::string& executable,
                              const std::vector<std::string>& arguments,
                              std::chrono::milliseconds timeout) = 0;
};

} // namespace hg
