#include "shells/macos/views/HotkeyRecorderControl.hpp"

#include "hotkey/HotkeyRecorder.hpp"
#include "shells/macos/views/RedrawScheduler.hpp"

#import <AppKit/AppKit.h>

#include <optional>
#include <string>

@interface HGHotkeyRecorderControl : NSView
- (instancetype)initWithRecorder:(hg::HotkeyRecorder*)recorder;
@end

@implementation HGHotkeyRecorderControl {
    hg::HotkeyRecorder* _recorder;
    std::optional<hg::mac::RedrawScheduler> _redraw;
}

- (instancetype)initWithRecorder:(hg::HotkeyRecorder*)recorder {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _recorder = recorder;
        __weak HGHotkeyRecorderControl* weakSelf = self;
        _redraw.emplace([weakSelf] { weakSelf.needsDisplay = YES; });
        _redraw->observe(recorder->objectWillChange());
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityButtonRole;
        self.accessibilityLabel = @"Mute Shortcut";
    }
    return self;
}

- (void)dealloc {
    // A recording must not outlive the field that shows it.
    if (_recorder->isRecording()) {
        _recorder->focusLost();
    }
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

- (NSSize)intrinsicContentSize {
    return NSMakeSize(100, 24);
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    const bool recording = _recorder->isRecording();
    [(recording ? NSColor.selectedControlColor : NSColor.controlBackgroundColor) setFill];
    NSBezierPath* path = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(self.bounds, 1, 1)
                                                         xRadius:4
                                                         yRadius:4];
    [path fill];
    [NSColor.separatorColor setStroke];
    path.lineWidth = 1;
    [path stroke];

    const std::string shown = _recorder->shownText();
    NSString* text = [[NSString alloc] initWithBytes:shown.data()
                                              length:shown.size()
                                            encoding:NSUTF8StringEncoding];
    NSDictionary<NSAttributedStringKey, id>* attributes = @{
        NSFontAttributeName : [NSFont systemFontOfSize:13],
        NSForegroundColorAttributeName : recording ? NSColor.selectedControlTextColor
                                                   : NSColor.labelColor,
    };
    NSAttributedString* label = [[NSAttributedString alloc] initWithString:text != nil ? text : @""
                                                                attributes:attributes];
    const NSSize size = label.size;
    const NSRect bounds = self.bounds;
    [label drawInRect:NSMakeRect((NSWidth(bounds) - size.width) * 0.5,
                                 (NSHeight(bounds) - size.height) * 0.5, size.width, size.height)];
}

- (void)mouseDown:(NSEvent*)event {
    (void)event;
    _recorder->click();
    // Recording holds the first responder, so that leaving the field cancels.
    if (_recorder->isRecording()) {
        [self.window makeFirstResponder:self];
    }
}

- (BOOL)resignFirstResponder {
    _recorder->focusLost();
    return [super resignFirstResponder];
}

- (void)viewWillMoveToWindow:(NSWindow*)newWindow {
    if (self.window != nil) {
        [NSNotificationCenter.defaultCenter removeObserver:self
                                                      name:NSWindowWillCloseNotification
                                                    object:self.window];
    }
    if (newWindow == nil && _recorder->isRecording()) {
        _recorder->focusLost();
    }
    [super viewWillMoveToWindow:newWindow];
}

- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    if (self.window != nil) {
        // A closed window keeps its first responder, so closing alone would
        // leave the recording (and its key monitor) running.
        [NSNotificationCenter.defaultCenter addObserver:self
                                               selector:@selector(windowWillClose:)
                                                   name:NSWindowWillCloseNotification
                                                 object:self.window];
    }
}

- (void)windowWillClose:(NSNotification*)notification {
    (void)notification;
    if (_recorder->isRecording()) {
        _recorder->focusLost();
    }
}

@end

namespace hg::mac {

void* makeHotkeyRecorderControl(HotkeyRecorder& recorder) {
    return (__bridge_retained void*)[[HGHotkeyRecorderControl alloc] initWithRecorder:&recorder];
}

} // namespace hg::mac
