#pragma once

#include "ports/LoginItems.hpp"

#include <cstdint>
#include <functional>
#include <vector>

namespace hg {

// The login-item service as a state machine: register enables, unregister
// makes the item not registered, and the state can be changed from outside
// (the user's own settings). With `fail` set both calls fail with
// "Operation not permitted" and change nothing.
class FakeLoginItems final : public LoginItems {
public:
    enum class Call : std::uint8_t { registerItem, unregisterItem };

    static constexpr const char* failureDescription = "Operation not permitted";

    bool fail = false;

    [[nodiscard]] Status status() const override { return status_; }
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

    // A change made outside the program.
    void setStatus(Status status) { status_ = status; }

    [[nodiscard]] const std::vector<Call>& calls() const { return calls_; }

    // Called for every register or unregister, before it takes effect.
    std::function<void(Call)> onCall;

private:
    std::optional<std::string> answer(Call call, Status success);

    Status status_ = Status::notRegistered;
    std::vector<Call> calls_;
};

// The unified log, captured.
class FakeUnifiedLog final : public UnifiedLog {
public:
    void error(std::string_view format, const std::vector<std::string>& arguments) override {
        const std::string message = formatted(format, arguments);
        lines_.push_back(message);
        if (onLine) {
            onLine(message);
        }
    }

    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

    std::function<void(const std::string&)> onLine;

private:
    std::vector<std::string> lines_;
};

} // namespace hg
