#pragma once

#include "ports/ProcessRunner.hpp"

#include <functional>

namespace hg {

// Child processes whose outcome a handler decides. Every run is recorded,
// also those the handler answers with a launch error.
class FakeProcessRunner final : public ProcessRunner {
public:
    using Handler = std::function<ProcessResult(const std::string& executable,
                                                const std::vector<std::string>& arguments)>;

    struct Run {
        std::string executable;
        std::vector<std::string> arguments;
        std::chrono::milliseconds timeout{0};
    };

    FakeProcessRunner() = default;
    explicit FakeProcessRunner(Handler handler) : handler_(std::move(handler)) {}

    // Without a handler every run fails to launch with "No such file or directory".
    ProcessResult run(const std::string& executable, const std::vector<std::string>& arguments,
                      std::chrono::milliseconds timeout) override {
        runs_.push_back(Run{executable, arguments, timeout});
        if (!handler_) {
            return ProcessResult{"No such file or directory", 0, {}, {}};
        }
        return handler_(executable, arguments);
    }

    void setHandler(Handler handler) { handler_ = std::move(handler); }

    [[nodiscard]] const std::vector<Run>& runs() const { return runs_; }
    // The argument lists of every run, in order.
    [[nodiscard]] std::vector<std::vector<std::string>> argumentLists() const {
        std::vector<std::vector<std::string>> lists;
        lists.reserve(runs_.size());
        for (const auto& r : runs_) {
            lists.push_back(r.arguments);
        }
        return lists;
    }
    void clearRuns() { runs_.clear(); }

private:
    Handler handler_;
    std::vector<Run> runs_;
};

} // namespace hg
