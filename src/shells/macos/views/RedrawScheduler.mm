#include "shells/macos/views/RedrawScheduler.hpp"

#include <dispatch/dispatch.h>

namespace hg::mac {

RedrawScheduler::RedrawScheduler(std::function<void()> redraw)
    : state_(std::make_shared<State>(State{std::move(redraw), false})) {}

void RedrawScheduler::observe(ObjectWillChange& source) {
    subscriptions_.push_back(source.subscribe([this] { schedule(); }));
}

void RedrawScheduler::schedule() {
    if (state_->pending) {
        return;
    }
    state_->pending = true;
    std::weak_ptr<State> weakState = state_;
    dispatch_async(dispatch_get_main_queue(), ^{
      const auto state = weakState.lock();
      if (state == nullptr) {
          return;
      }
      state->pending = false;
      if (state->redraw) {
          state->redraw();
      }
    });
}

} // namespace hg::mac
