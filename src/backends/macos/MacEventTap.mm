#include "backends/macos/MacEventTap.hpp"

#include "backends/macos/CFRef.hpp"
#include "backends/macos/NavigationKeyFlags.hpp"

#import <ApplicationServices/ApplicationServices.h>
#include <dispatch/dispatch.h>

namespace hg {

namespace {

// What the tap's callback is given; it lives as long as the MacEventTap.
struct TapContext {
    // Shared so that a callback that removes or replaces the tap does not
    // destroy itself while it runs.
    std::shared_ptr<const EventTap::Callback> callback;
};

constexpr CGEventMask keyboardEvents = CGEventMaskBit(kCGEventKeyDown) |
                                       CGEventMaskBit(kCGEventKeyUp) |
                                       CGEventMaskBit(kCGEventFlagsChanged);

CGEventRef tapCallback(CGEventTapProxy, CGEventType type, CGEventRef event, void* context) {
    const auto* tapContext = static_cast<const TapContext*>(context);
    if (tapContext == nullptr || !tapContext->callback) {
        return event;
    }
    const std::shared_ptr<const EventTap::Callback> callback = tapContext->callback;
    const TapDecision decision = (*callback)(tapEventFromCGEvent(type, event));
    return decision == TapDecision::remove ? nullptr : event;
}

} // namespace

struct MacEventTap::Impl {
    TapContext context;
    CFRef<CFMachPortRef> tap;
    CFRef<CFRunLoopSourceRef> source;
};

TapEvent tapEventFromCGEvent(std::uint32_t type, const void* cgEvent) {
    TapEvent out;
    out.type = type;
    if (type == tapevent::disabledByTimeout || type == tapevent::disabledByUserInput ||
        cgEvent == nullptr) {
        return out;
    }
    const auto event = (CGEventRef)cgEvent;
    out.keyCode = CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode);
    out.autorepeat = CGEventGetIntegerValueField(event, kCGKeyboardEventAutorepeat);
    out.flags = CGEventGetFlags(event);
    if (type == kCGEventKeyDown || type == kCGEventKeyUp) {
        out.flags = keyEventModifierFlags(out.keyCode, out.flags);
    }
    return out;
}

MacEventTap::MacEventTap() : impl_(std::make_unique<Impl>()) {}

MacEventTap::~MacEventTap() {
    remove();
}

bool MacEventTap::install(Callback callback) {
    remove();
    auto tap = CFRef<CFMachPortRef>::adopt(
        CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                         keyboardEvents, tapCallback, &impl_->context));
    if (!tap) {
        return false;
    }
    auto source = CFRef<CFRunLoopSourceRef>::adopt(
        CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap.get(), 0));
    if (!source) {
        CFMachPortInvalidate(tap.get());
        return false;
    }
    impl_->context.callback = std::make_shared<const Callback>(std::move(callback));
    impl_->tap = std::move(tap);
    impl_->source = std::move(source);
    // Common modes: the tap is serviced while a menu is tracked or a modal
    // panel runs too; in the default mode alone the system would disable it
    // meanwhile, every key waiting for it.
    CFRunLoopAddSource(CFRunLoopGetMain(), impl_->source.get(), kCFRunLoopCommonModes);
    CGEventTapEnable(impl_->tap.get(), true);
    return true;
}

void MacEventTap::setEnabled(bool enabled) {
    if (impl_->tap) {
        CGEventTapEnable(impl_->tap.get(), enabled);
    }
}

void MacEventTap::runAfterCallback(std::function<void()> action) {
    // The main queue is serial and runs on the main thread in the common
    // modes: in order, after the callback has handed its event back.
    auto queued = std::make_shared<std::function<void()>>(std::move(action));
    dispatch_async(dispatch_get_main_queue(), ^{
      (*queued)();
    });
}

void MacEventTap::remove() {
    if (impl_->source) {
        CFRunLoopRemoveSource(CFRunLoopGetMain(), impl_->source.get(), kCFRunLoopCommonModes);
    }
    if (impl_->tap) {
        CGEventTapEnable(impl_->tap.get(), false);
        // Invalidating lets the port go with its last reference instead of
        // waiting on the source that still refers to it.
        CFMachPortInvalidate(impl_->tap.get());
    }
    impl_->source.reset();
    impl_->tap.reset();
    impl_->context.callback.reset();
}

} // namespace hg
