#pragma once

#include "ports/Clock.hpp"

namespace hg {

// The machine's wall clock.
class SystemClock final : public Clock {
public:
    [[nodiscard]] Instant now() const override {
        return std::chrono::time_point_cast<Duration>(std::chrono::system_clock::now());
    }
};

} // namespace hg
