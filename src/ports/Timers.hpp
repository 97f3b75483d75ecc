#pragma once

#include "ports/Clock.hpp"

#include <cstdint>
#include <functional>

namespace hg {

using TimerId = std::uint64_t;

// Repeating timers on the main loop, in its default mode: they do not fire
// while a menu is being tracked, and firings missed meanwhile are not made up.
class Timers {
public:
    virtual ~Timers() = default;

    // Calls `tick` every `interval`, first one interval from now, on the main
    // thread, until cancelled. Never fails; the id is never 0.
    virtual TimerId scheduleRepeating(Duration interval, std::function<void()> tick) = 0;

    // Stops a timer. Unknown or already cancelled ids are ignored.
    virtual void cancel(TimerId id) = 0;
};

} // namespace hg
