#pragma once

#include "ports/Timers.hpp"

#include <QObject>
#include <map>

class QTimer;

namespace hg {

// Repeating timers on the Qt event loop of the main thread. Coarse timers:
// the watcher's once-a-second tick does not need millisecond accuracy, and
// letting the system batch wake-ups keeps the idle cost down.
class QtTimers final : public Timers {
public:
    QtTimers();
    ~QtTimers() override;
    QtTimers(const QtTimers&) = delete;
    QtTimers& operator=(const QtTimers&) = delete;

    TimerId scheduleRepeating(Duration interval, std::function<void()> tick) override;
    // Safe from within the timer's own tick.
    void cancel(TimerId id) override;

private:
    QObject owner_;
    std::map<TimerId, QTimer*> timers_;
    TimerId nextId_ = 0;
};

} // namespace hg
