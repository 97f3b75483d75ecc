#include "backends/fake/FakeTimers.hpp"

namespace hg {

TimerId FakeTimers::scheduleRepeating(Duration interval, std::function<void()> tick) {
    if (interval <= Duration::zero()) {
        interval = Duration(1);
    }
    const TimerId id = ++nextId_;
    timers_.emplace(id, Timer{interval, clock_.now() + interval, std::move(tick)});
    return id;
}

void FakeTimers::cancel(TimerId id) { timers_.erase(id); }

void FakeTimers::advance(Duration by) {
    const Instant end = clock_.now() + by;
    for (;;) {
        // The earliest due timer; ties go to the one scheduled first.
        auto next = timers_.end();
        for (auto it = timers_.begin(); it != timers_.end(); ++it) {
            if (next == timers_.end() || it->second.due < next->second.due) {
                next = it;
            }
        }
        if (next == timers_.end() || next->second.due > end) {
            break;
        }
        const TimerId id = next->first;
        clock_.set(next->second.due);
        next->second.due += next->second.interval;
        if (!paused_) {
            // Copy: the tick may cancel its own timer.
            auto tick = next->second.tick;
            tick();
        }
        (void)id;
    }
    clock_.set(end);
}

} // namespace hg
