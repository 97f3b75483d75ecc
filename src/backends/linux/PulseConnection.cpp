#include "backends/linux/PulseConnection.hpp"

#include <algorithm>
#include <poll.h>
#include <pulse/error.h>
#include <pulse/proplist.h>
#include <pulse/subscribe.h>

namespace hg {

namespace {

bool settled(pa_context_state_t state) {
    return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
}

} // namespace

PulseConnection::PulseConnection(std::function<void()> onChange)
    : onChange_(std::move(onChange)), loop_(pa_mainloop_new()) {
    if (loop_ != nullptr) {
        pa_mainloop_set_poll_func(
            loop_,
            [](pollfd* descriptors, unsigned long count, int timeout, void* self) {
                auto& seen = static_cast<PulseConnection*>(self)->readDescriptors_;
                seen.clear();
                for (unsigned long i = 0; i < count; ++i) {
                    if ((descriptors[i].events & POLLIN) != 0) {
                        seen.push_back(descriptors[i].fd);
                    }
                }
                return ::poll(descriptors, count, timeout);
            },
            this);
    }
}

PulseConnection::~PulseConnection() {
    if (context_ != nullptr) {
        pa_context_set_subscribe_callback(context_, nullptr, nullptr);
        pa_context_disconnect(context_);
        pa_context_unref(context_);
    }
    if (loop_ != nullptr) {
        pa_mainloop_free(loop_);
    }
}

std::string PulseConnection::lastError() const {
    return pa_strerror(context_ != nullptr ? pa_context_errno(context_) : PA_ERR_INTERNAL);
}

bool PulseConnection::iterate(Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    const auto timeout = std::clamp<std::chrono::microseconds::rep>(left.count(), 0, 1'000'000);
    return pa_mainloop_prepare(loop_, static_cast<int>(timeout)) >= 0 &&
           pa_mainloop_poll(loop_) >= 0 && pa_mainloop_dispatch(loop_) >= 0;
}

bool PulseConnection::connect(Clock::time_point deadline, std::string& why) {
    if (loop_ == nullptr) {
        why = "no main loop";
        return false;
    }
    pa_proplist* properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_APPLICATION_NAME, "HushGremlin");
    pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, "hushgremlin");
    context_ = pa_context_new_with_proplist(pa_mainloop_get_api(loop_), "HushGremlin", properties);
    pa_proplist_free(properties);
    if (context_ == nullptr) {
        why = "no client context";
        return false;
    }
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        why = lastError();
        return false;
    }
    while (!settled(pa_context_get_state(context_))) {
        if (Clock::now() >= deadline || !iterate(deadline)) {
            why = "no answer in time";
            return false;
        }
    }
    if (pa_context_get_state(context_) != PA_CONTEXT_READY) {
        why = lastError();
        return false;
    }
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t, uint32_t, void* self) {
            auto& connection = *static_cast<PulseConnection*>(self);
            if (connection.onChange_) {
                connection.onChange_();
            }
        },
        this);
    const auto mask = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE |
                                                          PA_SUBSCRIPTION_MASK_SOURCE_OUTPUT |
                                                          PA_SUBSCRIPTION_MASK_SERVER);
    return await(pa_context_subscribe(context_, mask, nullptr, nullptr), deadline, why);
}

bool PulseConnection::isReady() {
    if (context_ == nullptr) {
        return false;
    }
    // Whatever has arrived, without waiting; bounded in case the server
    // floods us.
    for (int i = 0; i < 64 && pa_mainloop_iterate(loop_, 0, nullptr) > 0; ++i) {
    }
    return pa_context_get_state(context_) == PA_CONTEXT_READY;
}

bool PulseConnection::await(pa_operation* operation, Clock::time_point deadline, std::string& why) {
    if (operation == nullptr) {
        why = lastError();
        return false;
    }
    bool done = true;
    while (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) {
        if (pa_context_get_state(context_) != PA_CONTEXT_READY) {
            why = lastError();
            done = false;
            break;
        }
        if (Clock::now() >= deadline || !iterate(deadline)) {
            why = "no answer in time";
            done = false;
            break;
        }
    }
    const pa_operation_state_t state = pa_operation_get_state(operation);
    if (state == PA_OPERATION_RUNNING) {
        pa_operation_cancel(operation);
    } else if (done && state != PA_OPERATION_DONE) {
        // A connection that failed cancels what it was doing.
        why = lastError();
        done = false;
    }
    pa_operation_unref(operation);
    return done;
}

} // namespace hg
