#include "shells/sim/SimTuple.hpp"

namespace hg::sim {

SimTuple::SimTuple(std::string cliPath, FakeRunningApplications& applications,
                   FakeFileSystem& files, FakeProcessRunner& processes, SimOutput& out)
    : cliPath_(std::move(cliPath)), applications_(applications), files_(files),
      processes_(processes), out_(out) {
    files_.add(cliPath_);
    processes_.setHandler(
        [this](const std::string& executable, const std::vector<std::string>& arguments) {
            // Nobody reads the record here; a long run would only pile it up.
            processes_.clearRuns();
            if (executable != cliPath_) {
                return ProcessResult{"No such file or directory", 0, {}, {}};
            }
            return run(arguments);
        });
}

void SimTuple::start(ProcessId pid) {
    // A restart ends the call; a call set up before the first start stands.
    if (pid_) {
        stop();
    }
    pid_ = pid;
    applications_.add(std::string(bundleID), pid);
}

void SimTuple::stop() {
    if (pid_) {
        applications_.removePid(*pid_);
        pid_.reset();
    }
    call_ = Call::off;
}

void SimTuple::setTool(Tool tool) {
    tool_ = tool;
    if (tool == Tool::missing) {
        files_.remove(cliPath_);
    } else {
        files_.add(cliPath_);
    }
}

void SimTuple::setCall(Call call) {
    call_ = call;
    stateText_.reset();
}

void SimTuple::setResult(int status, std::string standardError) {
    exitStatus_ = status;
    standardError_ = std::move(standardError);
}

ProcessResult SimTuple::run(const std::vector<std::string>& arguments) {
    std::string joined;
    for (const auto& argument : arguments) {
        joined += joined.empty() ? argument : " " + argument;
    }
    out_.observe("tuple " + joined);

    if (tool_ == Tool::missing) {
        return ProcessResult{"No such file or directory", 0, {}, {}};
    }
    if (tool_ == Tool::broken) {
        return ProcessResult{"Permission denied", 0, {}, {}};
    }

    ProcessResult result;
    result.exitStatus = exitStatus_;
    result.standardError = standardError_;
    const bool changes = exitStatus_ == 0;
    if (arguments == std::vector<std::string>{"state", "--format", "json"}) {
        if (stateText_) {
            result.standardOutput = *stateText_;
        } else if (call_ == Call::off) {
            result.standardOutput = R"({"in_call":false})";
        } else {
            result.standardOutput = call_ == Call::muted
                                        ? R"({"in_call":true,"call":{"muted":true}})"
                                        : R"({"in_call":true,"call":{"muted":false}})";
        }
    } else if (arguments == std::vector<std::string>{"call", "mute"} ||
               arguments == std::vector<std::string>{"call", "unmute"}) {
        // Outside a call there is nothing to mute; the tool says nothing.
        if (changes && call_ != Call::off) {
            call_ = arguments[1] == "mute" ? Call::muted : Call::unmuted;
        }
    } else if (result.exitStatus == 0) {
        result.exitStatus = 64;
        result.standardError += "unknown command";
    }
    return result;
}

} // namespace hg::sim
