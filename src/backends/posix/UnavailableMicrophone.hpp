#pragma once

#include "ports/Microphone.hpp"

namespace hg {

// For a build without an audio backend: nothing is ever seen recording, so
// the microphone never shows as a call.
class UnavailableMicrophone final : public Microphone {
public:
    bool isInUse() override { return false; }
    std::optional<bool> isMuted() override { return std::nullopt; }
    bool setMuted(bool /*muted*/) override { return false; }
};

} // namespace hg
