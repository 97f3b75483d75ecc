#pragma once

#include "ports/LoginItems.hpp"

namespace hg {

// The system log (os_log), subsystem "app.hushgremlin.HushGremlin", category
// "main", made once for the whole program. Messages go out at error level with
// their format and its arguments as the system log's own: the arguments are
// dynamic strings, which it keeps private unless configured otherwise.
class MacUnifiedLog final : public UnifiedLog {
public:
    void error(std::string_view format, const std::vector<std::string>& arguments) override;
};

} // namespace hg
