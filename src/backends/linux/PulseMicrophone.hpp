#pragma once

#include "ports/LineSink.hpp"
#include "ports/Microphone.hpp"

#include <chrono>
#include <memory>

namespace hg {

// The default input (the server's default source) through PulseAudio's
// client library, which PipeWire serves as well through pipewire-pulse.
// The source is in use while a stream other than ours records from it:
// streams that are paused (corked) and level meters (peak-detect streams, as
// volume controls open them) do not count, and a sink's monitor is never a
// microphone.
//
// Nothing connects before the first question. Then one connection stays open;
// the server reports every change, and only then are the default source and
// its streams read again, so an idle second costs one poll without waiting.
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

    bool isInUse() override;
    std::optional<bool> isMuted() override;
    bool setMuted(bool muted) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
