#include "shells/qt/views/RedrawScheduler.hpp"

#include <QTimer>

namespace hg::views {

RedrawScheduler::RedrawScheduler(QObject& context, std::function<void()> redraw)
    : context_(context), redraw_(std::move(redraw)) {}

void RedrawScheduler::observe(ObjectWillChange& source) {
    subscriptions_.push_back(source.subscribe([this] { schedule(); }));
}

void RedrawScheduler::schedule() {
    if (pending_) {
        return;
    }
    pending_ = true;
    QTimer::singleShot(0, &context_, [this] {
        pending_ = false;
        redraw_();
    });
}

} // namespace hg::views
