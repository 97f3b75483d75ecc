#pragma once

#include "ports/RunningApplications.hpp"

namespace hg {

// NSWorkspace's running applications, in its order. Main thread only: the
// list is kept up to date by notifications delivered on the main run loop.
class MacRunningApplications final : public RunningApplications {
public:
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
};

} // namespace hg
