#pragma once

#include "ports/Timers.hpp"
#include "backends/fake/FakeClock.hpp"

#include <map>

namespace hg {

// Repeating timers on a FakeClock. Time moves only through advance(), which
// fires every timer due on the way, in due order, with the clock set to each
// firing's due time.
class FakeTimers final : public Timers {
public:
    explicit FakeTimers(FakeClock& clock) : clock_(clock) {}

    TimerId scheduleRepeating(Duration interval, std::function<void()> tick) override;
    void cancel(TimerId id) override;

    // Moves the clock forward by `by`, firing what falls due (a timer due
    // exactly at the end fires).
    void advance(Duration by);
    void advanceSeconds(double seconds) {
        advance(std::chrono::duration_cast<Duration>(Seconds(seconds)));
    }

    // While paused (a menu is being tracked) due firings are skipped, not
    // queued: each timer goes on at its next due time after the pause.
    void setPaused(bool paused) { paused_ = paused; }
    [[nodiscard]] bool paused() const { return paused_; }

    [[nodiscard]] std::size_t activeCount() const { return timers_.size(); }

private:
    struct Timer {
        Duration interval;
        Instant due;
        std::function<void()> tick;
    };

    FakeClock& clock_;
    std::map<TimerId, Timer> timers_;
    TimerId nextId_ = 0;
    bool paused_ = false;
};

} // namespace hg
