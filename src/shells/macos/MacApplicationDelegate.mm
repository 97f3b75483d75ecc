#include "shells/macos/MacApplicationDelegate.hpp"

#include "app/AppDelegate.hpp"
#include "shells/macos/MacPlatform.hpp"
#include "shells/macos/SparkleUpdater.hpp"

#import <AppKit/AppKit.h>
#include <memory>

// The NSApplication's delegate: owns the platform and the application built on
// it, and answers the update framework as its updater and user-driver
// delegate.
@interface HGApplicationDelegate : NSObject <NSApplicationDelegate>
- (void)updater:(id)updater didFindValidUpdate:(id)item;
- (BOOL)supportsGentleScheduledUpdateReminders;
@end

@implementation HGApplicationDelegate {
    std::unique_ptr<hg::MacPlatform> _platform;
    std::unique_ptr<hg::AppDelegate> _application;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _platform = std::make_unique<hg::MacPlatform>((__bridge void*)self);
        _application = std::make_unique<hg::AppDelegate>(_platform->platform(),
                                                         hg::AppDelegate::Departures::ofPrograms());
    }
    return self;
}

- (void)dealloc {
    // The application refers to the platform's status item and windows: it
    // goes first.
    _application.reset();
    _platform.reset();
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    _application->startUp();
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    (void)notification;
    _application->applicationWillTerminate();
}

- (void)updater:(id)updater didFindValidUpdate:(id)item {
    (void)updater;
    (void)item;
    _platform->updater().validUpdateFound();
}

// Scheduled checks of an agent application (no Dock icon) are shown gently.
- (BOOL)supportsGentleScheduledUpdateReminders {
    return YES;
}

@end

namespace hg::mac {

int runApplication(int argc, char** argv) {
    (void)argc;
    (void)argv;
    @autoreleasepool {
        [NSApplication sharedApplication];
        // NSApplication holds its delegate weakly: this reference keeps it for
        // the life of the event loop.
        HGApplicationDelegate* delegate NS_VALID_UNTIL_END_OF_SCOPE =
            [[HGApplicationDelegate alloc] init];
        NSApp.delegate = delegate;
        [NSApp run];
    }
    return 0;
}

} // namespace hg::mac
