#include "shells/macos/views/LaunchAtLoginToggle.hpp"

#include "app/LaunchAtLogin.hpp"
#include "shells/macos/views/RedrawScheduler.hpp"

#import <AppKit/AppKit.h>

#include <optional>

@interface HGLaunchAtLoginToggle : NSButton
- (instancetype)initWithLaunchAtLogin:(hg::LaunchAtLogin*)launchAtLogin title:(NSString*)title;
@end

@implementation HGLaunchAtLoginToggle {
    hg::LaunchAtLogin* _launchAtLogin;
    std::optional<hg::mac::RedrawScheduler> _redraw;
}

- (instancetype)initWithLaunchAtLogin:(hg::LaunchAtLogin*)launchAtLogin title:(NSString*)title {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _launchAtLogin = launchAtLogin;
        [self setButtonType:NSButtonTypeSwitch];
        self.title = title;
        self.target = self;
        self.action = @selector(toggled:);
        __weak HGLaunchAtLoginToggle* weakSelf = self;
        _redraw.emplace([weakSelf] { [weakSelf refresh]; });
        _redraw->observe(launchAtLogin->objectWillChange());
        [self refresh];
    }
    return self;
}

// The service is the only record of the setting: an item turned on or off in
// the system's settings shows here the next time this is asked.
- (void)refresh {
    const NSControlStateValue live =
        _launchAtLogin->isEnabled() ? NSControlStateValueOn : NSControlStateValueOff;
    if (self.state != live) {
        self.state = live;
    }
}

- (void)viewWillDraw {
    [self refresh];
    [super viewWillDraw];
}

- (void)viewWillMoveToWindow:(NSWindow*)newWindow {
    if (self.window != nil) {
        [NSNotificationCenter.defaultCenter removeObserver:self
                                                      name:NSWindowDidBecomeKeyNotification
                                                    object:self.window];
    }
    [super viewWillMoveToWindow:newWindow];
}

- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    if (self.window != nil) {
        [NSNotificationCenter.defaultCenter addObserver:self
                                               selector:@selector(windowDidBecomeKey:)
                                                   name:NSWindowDidBecomeKeyNotification
                                                 object:self.window];
        [self refresh];
    }
}

- (void)windowDidBecomeKey:(NSNotification*)notification {
    (void)notification;
    [self refresh];
}

- (void)toggled:(id)sender {
    (void)sender;
    _launchAtLogin->setEnabled(self.state == NSControlStateValueOn);
}

@end

namespace hg::mac {

void* makeLaunchAtLoginToggle(LaunchAtLogin& launchAtLogin, std::string_view label) {
    NSString* title = [[NSString alloc] initWithBytes:label.data()
                                               length:label.size()
                                             encoding:NSUTF8StringEncoding];
    return (__bridge_retained void*)[[HGLaunchAtLoginToggle alloc]
        initWithLaunchAtLogin:&launchAtLogin
                        title:title != nil ? title : @""];
}

} // namespace hg::mac
