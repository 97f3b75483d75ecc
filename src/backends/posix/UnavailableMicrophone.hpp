#pragma once

#include "ports/Microphone.hpp"

namespace hg {

// For a build without an audio backend: there is no input, so the
// microphone never shows as a call.
class UnavailableMicrophone final : public Microphone {
public:
    std::string defaultInput() override { return {}; }
    std::optional<bool> isRecording(const std::string& /*input*/) override { return std::nullopt; }
    std::optional<std::vector<std::string>> recordedInputs() override { return std::nullopt; }
    std::optional<bool> isMuted(const std::string& /*input*/) override { return std::nullopt; }
    bool setMuted(const std::string& /*input*/, bool /*muted*/) override { return false; }
};

} // namespace hg
