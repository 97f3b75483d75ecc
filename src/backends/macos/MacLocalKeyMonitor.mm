#include "backends/macos/MacLocalKeyMonitor.hpp"

#include "backends/macos/NavigationKeyFlags.hpp"

#import <AppKit/AppKit.h>
#include <map>

namespace hg {

struct MacLocalKeyMonitor::Impl {
    // The opaque monitor objects NSEvent hands out, by token.
    std::map<std::uint64_t, id> monitors;
    std::uint64_t lastToken = 0;
};

MacLocalKeyMonitor::MacLocalKeyMonitor() : impl_(std::make_unique<Impl>()) {}

MacLocalKeyMonitor::~MacLocalKeyMonitor() {
    for (const auto& entry : impl_->monitors) {
        [NSEvent removeMonitor:entry.second];
    }
}

std::uint64_t MacLocalKeyMonitor::add(Handler handler) {
    const std::uint64_t token = ++impl_->lastToken;
    // Shared so that a handler that removes its own monitor outlives the block.
    auto shared = std::make_shared<const Handler>(std::move(handler));
    NSEvent* (^translate)(NSEvent*) = ^NSEvent*(NSEvent* event) {
        LocalKeyEvent key;
        key.type = event.type == NSEventTypeFlagsChanged ? LocalKeyEvent::Type::flagsChanged
                                                         : LocalKeyEvent::Type::keyDown;
        key.keyCode = event.keyCode;
        key.modifiers = key.type == LocalKeyEvent::Type::keyDown
                            ? keyEventModifierFlags(event.keyCode, event.modifierFlags)
                            : event.modifierFlags;
        const auto running = shared;
        return (*running)(key) ? nil : event;
    };
    id monitor =
        [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown | NSEventMaskFlagsChanged
                                              handler:translate];
    impl_->monitors.emplace(token, monitor);
    return token;
}

void MacLocalKeyMonitor::remove(std::uint64_t token) {
    const auto it = impl_->monitors.find(token);
    if (it == impl_->monitors.end()) {
        return;
    }
    [NSEvent removeMonitor:it->second];
    impl_->monitors.erase(it);
}

} // namespace hg
