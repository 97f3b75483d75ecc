#pragma once

#include "ports/Timers.hpp"

#include <memory>

namespace hg {

// Repeating NSTimers on the current run loop in its default mode, so that they
// pause while a menu is tracked. Main thread only; destroying the object
// cancels its timers.
class MacTimers final : public Timers {
public:
    MacTimers();
    ~MacTimers() override;
    MacTimers(const MacTimers&) = delete;
    MacTimers& operator=(const MacTimers&) = delete;

    TimerId scheduleRepeating(Duration interval, std::function<void()> tick) override;
    void cancel(TimerId id) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
