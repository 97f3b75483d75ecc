#include "shells/macos/MacApplicationDelegate.hpp"

#include "app/AppDelegate.hpp"
#include "shells/macos/MacPlatform.hpp"
#include "shells/macos/MacScripting.hpp"
#include "shells/macos/SparkleUpdater.hpp"
#include "shells/macos/TerminateOnSignal.hpp"

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
    std::unique_ptr<hg::mac::MacScripting> _scripting;
    // Held for the life of the process: App Nap would otherwise coalesce the
    // one-second tick of a menu-bar program with no window open.
    id<NSObject> _tickActivity;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _platform = std::make_unique<hg::MacPlatform>((__bridge void*)self);
        _application = std::make_unique<hg::AppDelegate>(_platform->platform());
    }
    return self;
}

- (void)dealloc {
    // The scripting refers to the application, the windows' views to the
    // application's objects, and the application to the platform's status
    // item: scripting, windows, application, then the rest of the platform.
    _scripting.reset();
    _platform->destroyWindows();
    _application.reset();
    _platform.reset();
}

// Before launching finishes, so that a hushgremlin:// link that launched the
// program reaches it.
- (void)applicationWillFinishLaunching:(NSNotification*)notification {
    (void)notification;
    _scripting = std::make_unique<hg::mac::MacScripting>(_application->remoteControl(),
                                                         _platform->platform().out);
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    _tickActivity = [NSProcessInfo.processInfo
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Follows the meeting's mute state once a second"];
    _application->startUp();
    _scripting->started();
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    (void)notification;
    _scripting.reset();
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
        const hg::mac::TerminateOnSignal terminateOnSignal;
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
