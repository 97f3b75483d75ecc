#pragma once

#include "shells/sim/SimDesktop.hpp"

#include <string>
#include <vector>

namespace hg::sim {

// The invariants a soak checks after every step. Watches the status item from
// the start, so it must be made before the application is launched.
class SoakChecks {
public:
    explicit SoakChecks(SimDesktop& desktop);

    // What is broken now (empty when all holds).
    [[nodiscard]] std::vector<std::string> check();

private:
    void onMenu(const MenuModel& menu);
    void onImage(const std::string& name);

    SimDesktop& desktop_;
    MenuModel lastMenu_;
    bool pushPending_ = false;          // a new menu still waiting for its image
    bool pendingMayBeDebugRow_ = false; // that menu only added or dropped the debug row
    std::vector<std::string> problems_;
};

} // namespace hg::sim
