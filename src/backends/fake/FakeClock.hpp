#pragma once

#include "ports/Clock.hpp"

namespace hg {

// A clock that moves only when told. Starts at the epoch (virtual time 0).
class FakeClock final : public Clock {
public:
    [[nodiscard]] Instant now() const override { return now_; }

    void advance(Duration by) { now_ += by; }
    void advanceSeconds(double seconds) {
        advance(std::chrono::duration_cast<Duration>(Seconds(seconds)));
    }
    void set(Instant at) { now_ = at; }

    // Virtual seconds since the start.
    [[nodiscard]] double elapsedSeconds() const {
        return std::chrono::duration_cast<Seconds>(now_.time_since_epoch()).count();
    }

private:
    Instant now_{};
};

} // namespace hg
