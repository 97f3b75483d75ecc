#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

// The system log, for the few messages that do not go to standard output. A
// message is a constant format and the texts that fill its %s places, handed
// over apart, so that a log that keeps arguments on their own (the unified
// log, which may keep them private) gets them that way.
class UnifiedLog {
public:
    static constexpr std::string_view launchAtLoginFailure = "Failed to %s launch at login: %s";

    virtual ~UnifiedLog() = default;
    virtual void error(std::string_view format, const std::vector<std::string>& arguments) = 0;

    // The format with each %s replaced by the next argument (by nothing once
    // they run out).
    [[nodiscard]] static std::string formatted(std::string_view format,
                                               const std::vector<std::string>& arguments) {
        std::string out;
        std::size_t next = 0;
        for (std::size_t i = 0; i < format.size(); ++i) {
            if (format.substr(i, 2) == "%s") {
                out += next < arguments.size() ? arguments[next++] : std::string();
                ++i;
            } else {
                out += format[i];
            }
        }
        return out;
    }
};

} // namespace hg
