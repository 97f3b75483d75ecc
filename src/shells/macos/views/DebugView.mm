#include "shells/macos/views/DebugView.hpp"

#include "core/UserData.hpp"
#include "shells/macos/views/RedrawScheduler.hpp"
#include "shells/macos/views/ViewStyle.hpp"

#import <AppKit/AppKit.h>

#include <optional>
#include <string_view>

namespace {

NSString* caseName(hg::MeetingStatus status) {
    const std::string_view name = hg::toString(status);
    return [[NSString alloc] initWithBytes:name.data()
                                    length:name.size()
                                  encoding:NSUTF8StringEncoding];
}

NSString* trueFalse(bool value) {
    return value ? @"True" : @"False";
}

NSTextField* centredLabel() {
    return (__bridge_transfer NSTextField*)hg::mac::makeLabel("", {.centred = true});
}

// One snapshot: its shown status, its read status and its accessibility.
NSStackView* historyColumn() {
    NSStackView* column =
        [NSStackView stackViewWithViews:@[ centredLabel(), centredLabel(), centredLabel() ]];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeCenterX;
    column.spacing = 0;
    return column;
}

void fillColumn(NSStackView* column, const hg::StatusSet& set) {
    NSArray<NSView*>* lines = column.arrangedSubviews;
    NSString* texts[] = {caseName(set.truest), caseName(set.read), trueFalse(set.hasAX)};
    for (NSUInteger line = 0; line < lines.count && line < 3; ++line) {
        static_cast<NSTextField*>(lines[line]).stringValue = texts[line];
    }
}

} // namespace

@interface HGDebugView : NSView
- (instancetype)initWithUserData:(hg::UserData*)userData;
@end

@implementation HGDebugView {
    hg::UserData* _userData;
    std::optional<hg::mac::RedrawScheduler> _redraw;
    NSTextField* _truest;
    NSTextField* _read;
    NSTextField* _ax;
    NSStackView* _history;
    NSButton* _toggleMute;
}

- (instancetype)initWithUserData:(hg::UserData*)userData {
    self = [super initWithFrame:NSMakeRect(0, 0, 480, 300)];
    if (self == nil) {
        return nil;
    }
    _userData = userData;

    // The introduction shares the free height with the spacer below the
    // status lines, and sits centred in its share.
    NSTextField* intro = (__bridge_transfer NSTextField*)hg::mac::makeLabel(
        "This is a debug menu for HushGremlin. Feel free to close it.",
        {.centred = true, .wrapWidth = 460});
    intro.translatesAutoresizingMaskIntoConstraints = NO;
    NSView* introArea = [[NSView alloc] initWithFrame:NSZeroRect];
    [introArea addSubview:intro];
    NSView* spacer = [[NSView alloc] initWithFrame:NSZeroRect];
    for (NSView* flexible in @[ introArea, spacer ]) {
        [flexible setContentHuggingPriority:NSLayoutPriorityDefaultLow - 1
                             forOrientation:NSLayoutConstraintOrientationVertical];
    }

    _truest = centredLabel();
    _read = centredLabel();
    _ax = centredLabel();

    _history = [NSStackView stackViewWithViews:@[]];
    _history.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    _history.alignment = NSLayoutAttributeCenterY;
    // Ten columns can be wider than the panel: they are cut, the panel keeps
    // its size.
    [_history setClippingResistancePriority:NSLayoutPriorityDefaultLow
                             forOrientation:NSLayoutConstraintOrientationHorizontal];

    _toggleMute = [NSButton buttonWithTitle:@"Toggle Mute"
                                     target:self
                                     action:@selector(toggleMute:)];
    NSButton* press = [NSButton buttonWithTitle:@"Press" target:self action:@selector(press:)];

    NSStackView* column = [NSStackView stackViewWithViews:@[
        introArea, _truest, _read, _ax, spacer, _history, _toggleMute, press
    ]];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeCenterX;
    column.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:column];

    [NSLayoutConstraint activateConstraints:@[
        [column.topAnchor constraintEqualToAnchor:self.safeAreaLayoutGuide.topAnchor],
        [column.bottomAnchor constraintEqualToAnchor:self.bottomAnchor],
        [column.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
        [column.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
        [introArea.heightAnchor constraintEqualToAnchor:spacer.heightAnchor],
        [introArea.widthAnchor constraintEqualToAnchor:column.widthAnchor],
        [intro.centerXAnchor constraintEqualToAnchor:introArea.centerXAnchor],
        [intro.centerYAnchor constraintEqualToAnchor:introArea.centerYAnchor],
        [intro.topAnchor constraintGreaterThanOrEqualToAnchor:introArea.topAnchor],
        [intro.leadingAnchor constraintGreaterThanOrEqualToAnchor:introArea.leadingAnchor],
        [_history.widthAnchor constraintLessThanOrEqualToAnchor:column.widthAnchor],
        [press.widthAnchor constraintLessThanOrEqualToConstant:100],
        [press.heightAnchor constraintLessThanOrEqualToConstant:24],
    ]];

    __weak HGDebugView* weakSelf = self;
    _redraw.emplace([weakSelf] { [weakSelf redraw]; });
    _redraw->observe(userData->objectWillChange());
    [self redraw];
    return self;
}

- (void)redraw {
    _truest.stringValue =
        [@"Truest Status: " stringByAppendingString:caseName(_userData->truestStatus())];
    _read.stringValue = [@"Read Status: " stringByAppendingString:caseName(_userData->readStatus())];
    _ax.stringValue = [@"AXAccess: " stringByAppendingString:trueFalse(_userData->hasAXAccess())];
    _toggleMute.enabled = hg::isInMeeting(_userData->readStatus());

    // The columns are reused: the store announces a change every second.
    const auto& history = _userData->statusHistory();
    while (_history.arrangedSubviews.count > history.size()) {
        NSView* last = _history.arrangedSubviews.lastObject;
        [_history removeArrangedSubview:last];
        [last removeFromSuperview];
    }
    while (_history.arrangedSubviews.count < history.size()) {
        [_history addArrangedSubview:historyColumn()];
    }
    NSArray<NSView*>* columns = _history.arrangedSubviews;
    for (std::size_t i = 0; i < history.size(); ++i) {
        fillColumn(static_cast<NSStackView*>(columns[i]), history[i]);
    }
}

- (void)toggleMute:(id)sender {
    (void)sender;
    _userData->toggleMute();
}

- (void)press:(id)sender {
    (void)sender;
    _userData->refreshStatus();
}

@end

namespace hg::mac {

void* makeDebugView(UserData& userData) {
    return (__bridge_retained void*)[[HGDebugView alloc] initWithUserData:&userData];
}

} // namespace hg::mac
