#pragma once

#include "ports/Microphone.hpp"

#include <functional>
#include <vector>

namespace hg {

// A default input whose recording state and mute a test or script sets. With
// `failing` set it answers as an unreachable audio server does. Records every
// mute the application asks for.
class FakeMicrophone final : public Microphone {
public:
    bool recording = false;
    bool muted = false;
    bool failing = false;

    bool isInUse() override { return recording && !failing; }
    std::optional<bool> isMuted() override {
        return failing ? std::nullopt : std::optional<bool>(muted);
    }
    bool setMuted(bool value) override {
        requests_.push_back(value);
        if (onSetMuted) {
            onSetMuted(value);
        }
        if (failing) {
            return false;
        }
        muted = value;
        return true;
    }

    // Each mute asked for, in order, whether or not it succeeded.
    [[nodiscard]] const std::vector<bool>& requests() const { return requests_; }

    // Called for each request, before it takes effect.
    std::function<void(bool)> onSetMuted;

private:
    std::vector<bool> requests_;
};

} // namespace hg
