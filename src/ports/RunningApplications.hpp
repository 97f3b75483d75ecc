#pragma once

#include "ports/Accessibility.hpp"

#include <optional>
#include <string>
#include <vector>

namespace hg {

struct RunningApplication {
    std::optional<std::string> bundleIdentifier;
    ProcessId pid = 0;
};

// The applications of this user that are running now.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    // In the platform's order. An empty list when they cannot be listed.
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() const = 0;
};

} // namespace hg
