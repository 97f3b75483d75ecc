#include "shells/qt/QtTimers.hpp"

#include <QTimer>
#include <algorithm>
#include <chrono>

namespace hg {

QtTimers::QtTimers() = default;

QtTimers::~QtTimers() = default; // owner_ deletes the timers

TimerId QtTimers::scheduleRepeating(Duration interval, std::function<void()> tick) {
    const auto id = ++nextId_;
    auto* timer = new QTimer(&owner_);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(interval);
    timer->setInterval(std::max(ms, std::chrono::milliseconds(1)));
    timer->setTimerType(Qt::CoarseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [tick = std::move(tick)] { tick(); });
    timer->start();
    timers_.emplace(id, timer);
    return id;
}

void QtTimers::cancel(TimerId id) {
    const auto it = timers_.find(id);
    if (it == timers_.end()) {
        return;
    }
    it->second->stop();
    // Not deleted here: the tick that cancels its own timer is still running
    // inside the timer's signal.
    it->second->deleteLater();
    timers_.erase(it);
}

} // namespace hg
