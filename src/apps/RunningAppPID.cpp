#include "apps/RunningAppPID.hpp"

namespace hg {

std::optional<ProcessId> runningAppPID(const RunningApplications& applications,
                                       std::string_view bundleID) {
    for (const auto& app : applications.runningApplications()) {
        if (app.bundleIdentifier && *app.bundleIdentifier == bundleID) {
            return app.pid;
        }
    }
    return std::nullopt;
}

} // namespace hg
