#pragma once

#include "ports/Updater.hpp"

#include <functional>
#include <optional>
#include <string>

namespace hg {

// An update framework that finds an update only when told to.
class FakeUpdater final : public Updater {
public:
    void start(std::function<void()> validUpdateFound) override {
        ++starts_;
        validUpdateFound_ = std::move(validUpdateFound);
    }
    void checkForUpdates() override {
        ++checks_;
        if (onCheck) {
            onCheck();
        }
    }

    [[nodiscard]] std::optional<std::string> offReason() const override { return off; }

    // A check (scheduled or not) found a valid update: the delegate is told.
    void reportValidUpdate() {
        if (validUpdateFound_) {
            validUpdateFound_();
        }
    }

    [[nodiscard]] int startCount() const { return starts_; }
    [[nodiscard]] int checkCount() const { return checks_; }

    // Called for every user-initiated check.
    std::function<void()> onCheck;
    // Set: updates are off, for this reason.
    std::optional<std::string> off;

private:
    std::function<void()> validUpdateFound_;
    int starts_ = 0;
    int checks_ = 0;
};

} // namespace hg
