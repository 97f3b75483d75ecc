#pragma once

#include <optional>
#include <string>

namespace hg {

// The system's login-item service for this application.
class LoginItems {
public:
    enum class Status : int { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

    virtual ~LoginItems() = default;

    // Asked afresh on every call. A service that cannot be asked reports notFound.
    [[nodiscard]] virtual Status status() const = 0;

    // Each returns nothing on success, or the error's description.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

// The system log, for the few messages that do not go to standard output.
class UnifiedLog {
public:
    virtual ~UnifiedLog() = default;
    virtual void error(const std::string& message) = 0;
};

} // namespace hg
