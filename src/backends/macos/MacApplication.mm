#include "backends/macos/MacApplication.hpp"

#import <AppKit/AppKit.h>

namespace hg {

void MacApplication::activate() {
    // Deprecated in macOS 14 in favour of -activate, which 13 lacks.
    [NSApp activateIgnoringOtherApps:YES];
}

void MacApplication::terminate() {
    [NSApp terminate:nil];
}

} // namespace hg
