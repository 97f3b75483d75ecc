#pragma once

#include "ports/Application.hpp"

#include <functional>
#include <optional>
#include <string>

namespace hg {

// The application object. What terminating means (the delegate's farewell,
// ending the run) is the owner's handler; without one it is only counted.
class FakeApplication final : public Application {
public:
    void activate() override {
        ++activations_;
        if (onActivate) {
            onActivate();
        }
    }
    void terminate() override {
        ++terminations_;
        if (onTerminate) {
            onTerminate();
        }
    }

    [[nodiscard]] std::optional<std::string> packageVersion() const override {
        return packageVersionText;
    }

    [[nodiscard]] int activationCount() const { return activations_; }
    [[nodiscard]] int terminationCount() const { return terminations_; }

    std::function<void()> onActivate;
    std::function<void()> onTerminate;
    // What a package declares (a macOS bundle's version); nothing by default.
    std::optional<std::string> packageVersionText;

private:
    int activations_ = 0;
    int terminations_ = 0;
};

} // namespace hg
