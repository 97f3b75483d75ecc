#include "shells/macos/MacWindows.hpp"

#include "shells/macos/views/ContentViewFactory.hpp"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <map>
#include <utility>

namespace hg {

namespace {

NSString* toNSString(const std::string& text) {
    return [[NSString alloc] initWithBytes:text.data()
                                    length:text.size()
                                  encoding:NSUTF8StringEncoding];
}

bool isOnSomeScreen(NSRect frame) {
    for (NSScreen* screen in NSScreen.screens) {
        if (NSIntersectsRect(frame, screen.visibleFrame)) {
            return true;
        }
    }
    return false;
}

// A frame saved on a screen that is gone (or smaller now): the window gets a
// size that fits the main screen and is centred there.
void bringOntoScreen(NSWindow* window) {
    if (isOnSomeScreen(window.frame)) {
        return;
    }
    NSScreen* screen = NSScreen.mainScreen;
    if (screen != nil) {
        const NSRect visible = screen.visibleFrame;
        NSRect frame = window.frame;
        frame.size.width = std::min(frame.size.width, visible.size.width);
        frame.size.height = std::min(frame.size.height, visible.size.height);
        frame.origin = visible.origin;
        [window setFrame:frame display:NO];
    }
    [window center];
}

NSWindow* makeWindow(const WindowSpec& description) {
    const NSRect content = NSMakeRect(0, 0, description.contentWidth, description.contentHeight);
    const auto style = static_cast<NSWindowStyleMask>(description.styleMask);
    if (description.panel) {
        NSPanel* panel = [[NSPanel alloc] initWithContentRect:content
                                                    styleMask:style
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO];
        panel.hidesOnDeactivate = NO;
        panel.floatingPanel = YES;
        panel.becomesKeyOnlyIfNeeded = YES;
        return panel;
    }
    return [[NSWindow alloc] initWithContentRect:content
                                       styleMask:style
                                         backing:NSBackingStoreBuffered
                                           defer:NO];
}

} // namespace

struct MacWindows::Impl {
    std::map<WindowId, NSWindow*> windows;
    WindowId nextId = 0;

    [[nodiscard]] NSWindow* find(WindowId id) const {
        const auto it = windows.find(id);
        return it != windows.end() ? it->second : nil;
    }
};

MacWindows::MacWindows() : impl_(std::make_unique<Impl>()) {}

MacWindows::~MacWindows() {
    destroyAll();
}

void MacWindows::destroyAll() {
    @autoreleasepool {
        for (auto& [id, window] : impl_->windows) {
            [window orderOut:nil];
            window.contentView = nil;
        }
        impl_->windows.clear();
    }
}

WindowId MacWindows::create(WindowSpec description) {
    NSWindow* window = makeWindow(description);
    // Closing only hides: the window is kept here for the next request.
    window.releasedWhenClosed = NO;
    if (description.title) {
        window.title = toNSString(*description.title);
    }
    window.contentView = (__bridge_transfer NSView*)mac::makeContentView(description.content);
    // The content decides the least size it can be shown at; a smaller size
    // in the WindowSpec would clip it.
    const NSSize least = window.contentView.fittingSize;
    const NSSize wanted = NSMakeSize(std::max<CGFloat>(description.contentWidth, least.width),
                                     std::max<CGFloat>(description.contentHeight, least.height));
    if (wanted.width > description.contentWidth || wanted.height > description.contentHeight) {
        [window setContentSize:wanted];
    }

    // Naming the frame may already restore it; the explicit restore says
    // whether there was one. A frame moved back onto a screen is saved so.
    NSString* autosaveName = toNSString(description.frameAutosaveName);
    if (autosaveName.length > 0) {
        [window setFrameAutosaveName:autosaveName];
    }
    if (autosaveName.length > 0 && [window setFrameUsingName:autosaveName]) {
        bringOntoScreen(window);
    } else {
        [window center];
    }

    const WindowId id = ++impl_->nextId;
    impl_->windows.emplace(id, window);
    return id;
}

void MacWindows::makeKeyAndOrderFront(WindowId id) {
    NSWindow* window = impl_->find(id);
    [window makeKeyAndOrderFront:nil];
    // An activation that the system declines (macOS 14 and later may, for an
    // agent application) would leave the window behind the front application.
    [window orderFrontRegardless];
}

void MacWindows::close(WindowId id) {
    [impl_->find(id) close];
}

} // namespace hg
