#pragma once

#include "ports/LoginItems.hpp"

namespace hg {

// The system log (os_log), subsystem "app.hushgremlin.HushGremlin", category
// "main", made once for the whole program. Messages go out at error level as
// dynamic strings, which the system keeps private unless configured otherwise.
class MacUnifiedLog final : public UnifiedLog {
public:
    void error(const std::string& message) override;
};

} // namespace hg
