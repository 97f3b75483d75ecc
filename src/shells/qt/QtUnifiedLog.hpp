#pragma once

#include "ports/LoginItems.hpp"

namespace hg {

// The system log through Qt's logging: the journal when Qt was built with it
// and the program runs under systemd, standard error otherwise. Category
// "app.hushgremlin.launchatlogin".
class QtUnifiedLog final : public UnifiedLog {
public:
    void error(std::string_view format, const std::vector<std::string>& arguments) override;
};

} // namespace hg
