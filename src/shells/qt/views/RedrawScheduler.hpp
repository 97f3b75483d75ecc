#pragma once

#include "core/Observable.hpp"

#include <QObject>
#include <functional>
#include <vector>

namespace hg::views {

// Turns will-change announcements into one redraw on the next turn of the
// event loop, when the new values are in place. Several announcements before
// that turn give one redraw. Belongs to the widget it redraws (`context`),
// and must not outlive it.
class RedrawScheduler {
public:
    RedrawScheduler(QObject& context, std::function<void()> redraw);
    RedrawScheduler(const RedrawScheduler&) = delete;
    RedrawScheduler& operator=(const RedrawScheduler&) = delete;

    // Redraws after each announcement of `source`, for as long as this lives.
    void observe(ObjectWillChange& source);
    void schedule();

private:
    QObject& context_;
    std::function<void()> redraw_;
    std::vector<ObjectWillChange::Subscription> subscriptions_;
    bool pending_ = false;
};

} // namespace hg::views
