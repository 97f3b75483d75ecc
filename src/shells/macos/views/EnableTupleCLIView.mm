#include "shells/macos/views/EnableTupleCLIView.hpp"

#include "shells/macos/views/ViewStyle.hpp"

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

// The steps' background: the control background colour, clipped to a
// rounded rectangle with continuous corners. The colour is set again on each
// layer update so that it follows the light and dark appearance.
@interface HGStepsBox : NSView
@end

@implementation HGStepsBox

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (self != nil) {
        self.wantsLayer = YES;
    }
    return self;
}

- (BOOL)wantsUpdateLayer {
    return YES;
}

- (void)updateLayer {
    self.layer.backgroundColor = NSColor.controlBackgroundColor.CGColor;
    self.layer.cornerRadius = 8;
    self.layer.cornerCurve = kCACornerCurveContinuous;
    self.layer.masksToBounds = YES;
}

@end

namespace {

NSTextField* label(std::string_view text, const hg::mac::TextStyle& style = {}) {
    return (__bridge_transfer NSTextField*)hg::mac::makeLabel(text, style);
}

NSView* stepsBox() {
    const CGFloat padding = hg::mac::defaultPadding;
    NSStackView* steps = [NSStackView stackViewWithViews:@[
        label("To install it:", {.font = hg::mac::TextFont::subheadline, .bold = true}),
        label("1. Open Tuple"),
        label("2. Click the Tuple menu in the menu bar"),
        label("3. Select \"Install CLI Tool...\""),
    ]];
    steps.orientation = NSUserInterfaceLayoutOrientationVertical;
    steps.alignment = NSLayoutAttributeLeading;
    steps.spacing = 8;
    steps.translatesAutoresizingMaskIntoConstraints = NO;

    HGStepsBox* box = [[HGStepsBox alloc] initWithFrame:NSZeroRect];
    [box addSubview:steps];
    // At most 300 wide, as wide as that when there is room, lines on the
    // leading edge.
    NSLayoutConstraint* preferredWidth = [steps.widthAnchor constraintEqualToConstant:300];
    preferredWidth.priority = NSLayoutPriorityDefaultHigh - 1;
    [NSLayoutConstraint activateConstraints:@[
        preferredWidth,
        [steps.widthAnchor constraintLessThanOrEqualToConstant:300],
        [steps.topAnchor constraintEqualToAnchor:box.topAnchor constant:padding],
        [steps.bottomAnchor constraintEqualToAnchor:box.bottomAnchor constant:-padding],
        [steps.leadingAnchor constraintEqualToAnchor:box.leadingAnchor constant:padding],
        [steps.trailingAnchor constraintEqualToAnchor:box.trailingAnchor constant:-padding],
    ]];
    return box;
}

} // namespace

namespace hg::mac {

void* makeEnableTupleCLIView() {
    const CGFloat padding = defaultPadding;
    NSTextField* title = label("Tuple is running but its CLI tool is not installed.",
                               {.font = TextFont::headline, .centred = true, .wrapWidth = 460});
    NSTextField* why = label(
        "Hush Gremlin uses the Tuple CLI to detect and control your call's mute state.",
        {.centred = true, .wrapWidth = 400});
    NSTextField* after = label("Once installed, Hush Gremlin will detect it automatically.",
                               {.font = TextFont::caption,
                                .colour = TextColour::secondary,
                                .centred = true,
                                .wrapWidth = 460});

    NSStackView* column = [NSStackView stackViewWithViews:@[ title, why, stepsBox(), after ]];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeCenterX;
    column.spacing = 12;
    // The title's padding above and the last line's below come on top of the
    // padding around the whole.
    column.edgeInsets = NSEdgeInsetsMake(2 * padding, padding, 2 * padding, padding);
    return makeCentredHost((__bridge void*)column, 500, 350);
}

} // namespace hg::mac
