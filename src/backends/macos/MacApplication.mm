#include "backends/macos/MacApplication.hpp"

#import <AppKit/AppKit.h>

namespace hg {

void MacApplication::activate() {
    // From macOS 14 -activateIgnoringOtherApps: is deprecated and may be
    // ignored; -activate replaces it and 13 lacks it. Asked at run time: the
    // build targets 13, whose SDK does not declare it.
    static const SEL activateSelector = NSSelectorFromString(@"activate");
    if ([NSApp respondsToSelector:activateSelector]) {
        void (*send)(id, SEL) =
            reinterpret_cast<void (*)(id, SEL)>([NSApp methodForSelector:activateSelector]);
        send(NSApp, activateSelector);
    } else {
        [NSApp activateIgnoringOtherApps:YES];
    }
}

void MacApplication::terminate() {
    [NSApp terminate:nil];
}

std::optional<std::string> MacApplication::packageVersion() const {
    const id version = NSBundle.mainBundle.infoDictionary[@"CFBundleVersion"];
    if (![version isKindOfClass:NSString.class]) {
        return "?";
    }
    const char* utf8 = static_cast<NSString*>(version).UTF8String;
    return std::string(utf8 != nullptr ? utf8 : "?");
}

} // namespace hg
