#include "app/LaunchAtLogin.hpp"

#include <string>

namespace hg {

LaunchAtLogin::LaunchAtLogin(LoginItems& loginItems, UnifiedLog& log)
    : loginItems_(loginItems), log_(log) {}

bool LaunchAtLogin::isEnabled() const {
    return loginItems_.status() == LoginItems::Status::enabled;
}

void LaunchAtLogin::setEnabled(bool enabled) {
    objectWillChange_.send();
    std::optional<std::string> failure;
    if (enabled) {
        // Re-adding an enabled item repairs one the system has lost track of;
        // a failure to remove it first does not matter.
        if (isEnabled()) {
            (void)loginItems_.unregisterItem();
        }
        failure = loginItems_.registerItem();
    } else {
        failure = loginItems_.unregisterItem();
    }
    if (failure) {
        log_.error(UnifiedLog::launchAtLoginFailure, {enabled ? "enable" : "disable", *failure});
    }
}

} // namespace hg
