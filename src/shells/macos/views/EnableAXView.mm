#include "shells/macos/views/EnableAXView.hpp"

#include "shells/macos/views/ViewStyle.hpp"

#import <AppKit/AppKit.h>

@interface HGEnableAXView : NSView
- (instancetype)initWithPromptAction:(std::function<void()>)promptAction
                        globeKeyNote:(const std::string&)globeKeyNote;
@end

@implementation HGEnableAXView {
    std::function<void()> _promptAction;
}

- (instancetype)initWithPromptAction:(std::function<void()>)promptAction
                        globeKeyNote:(const std::string&)globeKeyNote {
    self = [super initWithFrame:NSMakeRect(0, 0, 560, 620)];
    if (self == nil) {
        return nil;
    }
    _promptAction = std::move(promptAction);
    const CGFloat padding = hg::mac::defaultPadding;

    // The text is centred in whatever height the picture and the button leave,
    // and never gets less than 70 points.
    NSTextField* text = (__bridge_transfer NSTextField*)hg::mac::makeLabel(
        "You must grant the Accessibility permission to Hush Gremlin in order for it to read "
        "and control your meeting app's mute.",
        {.centred = true, .wrapWidth = 420});
    text.translatesAutoresizingMaskIntoConstraints = NO;
    NSView* textArea = [[NSView alloc] initWithFrame:NSZeroRect];
    [textArea addSubview:text];
    [textArea setContentHuggingPriority:NSLayoutPriorityDefaultLow - 1
                         forOrientation:NSLayoutConstraintOrientationVertical];

    NSImageView* picture = [[NSImageView alloc] initWithFrame:NSMakeRect(0, 0, 500, 450)];
    picture.image = [NSImage imageNamed:@"AXPrefPane"];
    picture.imageScaling = NSImageScaleProportionallyUpOrDown;

    NSButton* grant = [NSButton buttonWithTitle:@"Grant Acessibility Permission"
                                         target:self
                                         action:@selector(grant:)];
    // The window's default button: drawn as such, and Return presses it.
    grant.keyEquivalent = @"\r";

    NSMutableArray<NSView*>* rows = [NSMutableArray arrayWithObject:textArea];
    if (!globeKeyNote.empty()) {
        [rows addObject:(__bridge_transfer NSTextField*)hg::mac::makeLabel(
                            globeKeyNote, {.colour = hg::mac::TextColour::secondary,
                                           .centred = true,
                                           .wrapWidth = 420})];
    }
    [rows addObjectsFromArray:@[ picture, grant ]];
    NSStackView* column = [NSStackView stackViewWithViews:rows];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeCenterX;
    // The button's own padding comes on top of the spacing.
    [column setCustomSpacing:column.spacing + padding afterView:picture];
    column.edgeInsets = NSEdgeInsetsMake(padding, padding, 2 * padding, padding);
    column.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:column];

    [NSLayoutConstraint activateConstraints:@[
        [column.topAnchor constraintEqualToAnchor:self.safeAreaLayoutGuide.topAnchor],
        [column.bottomAnchor constraintEqualToAnchor:self.bottomAnchor],
        [column.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
        [column.leadingAnchor constraintGreaterThanOrEqualToAnchor:self.leadingAnchor],
        [textArea.heightAnchor constraintGreaterThanOrEqualToConstant:70],
        [textArea.widthAnchor constraintEqualToAnchor:text.widthAnchor constant:2 * padding],
        [text.centerXAnchor constraintEqualToAnchor:textArea.centerXAnchor],
        [text.centerYAnchor constraintEqualToAnchor:textArea.centerYAnchor],
        [text.topAnchor constraintGreaterThanOrEqualToAnchor:textArea.topAnchor constant:padding],
        [picture.widthAnchor constraintEqualToConstant:500],
        [picture.heightAnchor constraintEqualToConstant:450],
    ]];
    return self;
}

- (void)grant:(id)sender {
    (void)sender;
    if (_promptAction) {
        _promptAction();
    }
}

@end

namespace hg::mac {

void* makeEnableAXView(std::function<void()> promptAction, const std::string& globeKeyNote) {
    return (__bridge_retained void*)[[HGEnableAXView alloc]
        initWithPromptAction:std::move(promptAction)
                globeKeyNote:globeKeyNote];
}

} // namespace hg::mac
