#pragma once

#include "ports/LoginItems.hpp"

namespace hg {

// The login item of the main application (SMAppService mainAppService).
// Holds no state: every call asks the service.
class MacLoginItems final : public LoginItems {
public:
    [[nodiscard]] Status status() const override;
    // On failure, the error's localized description.
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;
};

} // namespace hg
