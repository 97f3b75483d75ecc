#pragma once

#include "ports/RunningApplications.hpp"

#include <optional>
#include <string_view>

namespace hg {

// The process id of the first running application, in the platform's order,
// whose bundle identifier is exactly `bundleID` (letter case counts).
// Applications without a bundle identifier never match. Prints nothing.
[[nodiscard]] std::optional<ProcessId> runningAppPID(const RunningApplications& applications,
                                                     std::string_view bundleID);

} // namespace hg
