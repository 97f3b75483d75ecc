#include "backends/macos/MacUnifiedLog.hpp"

#include <os/log.h>

namespace hg {

void MacUnifiedLog::error(std::string_view format, const std::vector<std::string>& arguments) {
    static const os_log_t log = os_log_create("app.hushgremlin.HushGremlin", "main");
    // The system log takes only a literal format: each known one is written
    // out here, and anything else goes as one argument.
    if (format == launchAtLoginFailure && arguments.size() == 2) {
        os_log_error(log, "Failed to %s launch at login: %s", arguments[0].c_str(),
                     arguments[1].c_str());
        return;
    }
    os_log_error(log, "%s", formatted(format, arguments).c_str());
}

} // namespace hg
