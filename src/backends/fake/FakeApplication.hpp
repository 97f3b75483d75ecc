#pragma once

#include "ports/Application.hpp"

#include <functional>

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

    [[nodiscard]] int activationCount() const { return activations_; }
    [[nodiscard]] int terminationCount() const { return terminations_; }

    std::function<void()> onActivate;
    std::function<void()> onTerminate;

private:
    int activations_ = 0;
    int terminations_ = 0;
};

} // namespace hg
