#pragma once

#include "ports/RunningApplications.hpp"

#include <algorithm>

namespace hg {

// A list of running applications, kept in the order they were added.
class FakeRunningApplications final : public RunningApplications {
public:
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override {
        ++listCount_;
        return applications_;
    }

    void add(std::optional<std::string> bundleIdentifier, ProcessId pid) {
        applications_.push_back(RunningApplication{std::move(bundleIdentifier), pid});
    }
    // Removes every application with this bundle identifier.
    void remove(std::string_view bundleIdentifier) {
        std::erase_if(applications_, [bundleIdentifier](const RunningApplication& app) {
            return app.bundleIdentifier && *app.bundleIdentifier == bundleIdentifier;
        });
    }
    void removePid(ProcessId pid) {
        std::erase_if(applications_,
                      [pid](const RunningApplication& app) { return app.pid == pid; });
    }
    void clear() { applications_.clear(); }

    [[nodiscard]] const std::vector<RunningApplication>& applications() const {
        return applications_;
    }
    // How often the list was asked for.
    [[nodiscard]] int listCount() const { return listCount_; }

private:
    std::vector<RunningApplication> applications_;
    mutable int listCount_ = 0;
};

} // namespace hg
