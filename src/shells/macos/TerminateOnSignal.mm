#include "shells/macos/TerminateOnSignal.hpp"

#import <AppKit/AppKit.h>
#include <csignal>
#include <dispatch/dispatch.h>
#include <vector>

namespace hg::mac {

struct TerminateOnSignal::Impl {
    std::vector<dispatch_source_t> sources;
};

TerminateOnSignal::TerminateOnSignal() : impl_(std::make_unique<Impl>()) {
    for (const int signalNumber : {SIGTERM, SIGINT}) {
        // A dispatch source sees the signal only once its default action,
        // ending the process at once, is off.
        std::signal(signalNumber, SIG_IGN);
        dispatch_source_t source = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL,
                                                          static_cast<uintptr_t>(signalNumber), 0,
                                                          dispatch_get_main_queue());
        if (source == nullptr) {
            std::signal(signalNumber, SIG_DFL);
            continue;
        }
        dispatch_source_set_event_handler(source, ^{
          [NSApp terminate:nil];
        });
        dispatch_resume(source);
        impl_->sources.push_back(source);
    }
}

TerminateOnSignal::~TerminateOnSignal() {
    for (dispatch_source_t source : impl_->sources) {
        dispatch_source_cancel(source);
    }
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
}

} // namespace hg::mac
