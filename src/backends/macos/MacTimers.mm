#include "backends/macos/MacTimers.hpp"

#import <Foundation/Foundation.h>
#include <map>

namespace hg {

struct MacTimers::Impl {
    std::map<TimerId, NSTimer*> timers;
    TimerId lastId = 0;
};

MacTimers::MacTimers() : impl_(std::make_unique<Impl>()) {}

MacTimers::~MacTimers() {
    for (const auto& entry : impl_->timers) {
        [entry.second invalidate];
    }
}

TimerId MacTimers::scheduleRepeating(Duration interval, std::function<void()> tick) {
    const TimerId id = ++impl_->lastId;
    // Shared so that a tick that cancels its own timer outlives the block.
    auto shared = std::make_shared<const std::function<void()>>(std::move(tick));
    const NSTimeInterval seconds = std::chrono::duration<double>(interval).count();
    NSTimer* timer = [NSTimer scheduledTimerWithTimeInterval:seconds
                                                     repeats:YES
                                                       block:^(NSTimer*) {
                                                         const auto running = shared;
                                                         (*running)();
                                                       }];
    impl_->timers.emplace(id, timer);
    return id;
}

void MacTimers::cancel(TimerId id) {
    const auto it = impl_->timers.find(id);
    if (it == impl_->timers.end()) {
        return;
    }
    [it->second invalidate];
    impl_->timers.erase(it);
}

} // namespace hg
