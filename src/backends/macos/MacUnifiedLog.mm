#include "backends/macos/MacUnifiedLog.hpp"

#include <os/log.h>

namespace hg {

void MacUnifiedLog::error(const std::string& message) {
    static const os_log_t log = os_log_create("app.hushgremlin.HushGremlin", "main");
    os_log_error(log, "%s", message.c_str());
}

} // namespace hg
