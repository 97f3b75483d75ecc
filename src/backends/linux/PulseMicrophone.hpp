#pragma once

#include "ports/LineSink.hpp"
#include "ports/Microphone.hpp"

#include <chrono>
#include <memory>

namespace hg {

// The inputs (the server's sources, named by their source names) through
// PulseAudio's client library, which PipeWire serves as well through
// pipewire-pulse. A source is recorded while a stream other than ours reads it:
// streams that are paused (corked) and level meters (peak-detect streams, as
// volume controls open them) do not count, and a sink's monitor is never a
// microphone.
//
// Nothing connects before the first question. Then one connection stays open;
// the server reports every change, and only then are the sources and the
// streams read again, so an idle second costs one poll without waiting. With
// a change handler set, the connection is watched from Qt's main loop and a
// change that alters an answer is passed on at once.
// When the server cannot be reached or stops answering, the answers are
// "not available" and another attempt is made after `retryAfter`; each
// outage is said once on `out`.
class PulseMicrophone final : public Microphone {
public:
    struct Options {
        std::chrono::milliseconds readTimeout{250};
        std::chrono::milliseconds commandTimeout{1000};
        std::chrono::milliseconds retryAfter{5000};
    };

    explicit PulseMicrophone(LineSink& out) : PulseMicrophone(out, Options{}) {}
    PulseMicrophone(LineSink& out, Options options);
    ~PulseMicrophone() override;
    PulseMicrophone(const PulseMicrophone&) = delete;
    PulseMicrophone& operator=(const PulseMicrophone&) = delete;

    std::string defaultInput() override;
    std::optional<bool> isRecording(const std::string& input) override;
    std::optional<std::vector<std::string>> recordedInputs() override;
    std::optional<bool> isMuted(const std::string& input) override;
    bool setMuted(const std::string& input, bool muted) override;
    void setChangeHandler(std::function<void()> onChange) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
