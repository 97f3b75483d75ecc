#pragma once

#include "core/Observable.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace hg::mac {

// Turns will-change announcements into one redraw on the main queue's next
// turn, when the new values are in place; several announcements before that
// turn give one redraw. A view holds it for its own lifetime: once it is
// destroyed no redraw runs, not even one already queued. Main thread only.
class RedrawScheduler {
public:
    explicit RedrawScheduler(std::function<void()> redraw);
    RedrawScheduler(const RedrawScheduler&) = delete;
    RedrawScheduler& operator=(const RedrawScheduler&) = delete;

    // Redraws after each announcement of `source`, for as long as this lives.
    void observe(ObjectWillChange& source);
    void schedule();

private:
    struct State {
        std::function<void()> redraw;
        bool pending = false;
    };
    // Shared with the queued block, which holds it weakly.
    std::shared_ptr<State> state_;
    std::vector<ObjectWillChange::Subscription> subscriptions_;
};

} // namespace hg::mac
