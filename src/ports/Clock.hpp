#pragma once

#include <chrono>

namespace hg {

// Wall-clock instants with microsecond resolution. Microseconds keep the
// "distant past" (two thousand years back) well inside a 64-bit count.
using Duration = std::chrono::microseconds;
using Instant = std::chrono::time_point<std::chrono::system_clock, Duration>;

// Seconds as a floating-point duration, for the rules that are stated in
// seconds (1.5 s quiet time, 0.2 s tap interval).
using Seconds = std::chrono::duration<double>;

class Clock {
public:
    virtual ~Clock() = default;

    // The current instant. Never fails.
    [[nodiscard]] virtual Instant now() const = 0;

    // An instant long before any instant now() returns; the start value of
    // "when did this last happen" fields.
    [[nodiscard]] static Instant distantPast() {
        return Instant{} - std::chrono::duration_cast<Duration>(std::chrono::hours(24 * 365 * 2000));
    }
};

// |a - b| in seconds, without overflow for any two instants a Clock hands out.
[[nodiscard]] inline Seconds absoluteInterval(Instant a, Instant b) {
    const auto d = a - b;
    return std::chrono::duration_cast<Seconds>(d < Duration::zero() ? -d : d);
}

} // namespace hg
