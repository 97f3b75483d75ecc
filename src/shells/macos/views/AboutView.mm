#include "shells/macos/views/AboutView.hpp"

#include "shells/macos/views/ViewStyle.hpp"

#import <AppKit/AppKit.h>

#include <string_view>

// A text in the link colour that opens its address when clicked, with the
// pointing-hand cursor over it.
@interface HGLinkButton : NSButton
- (instancetype)initWithTitle:(NSString*)title url:(NSURL*)url font:(NSFont*)font;
@end

@implementation HGLinkButton {
    NSURL* _url;
}

- (instancetype)initWithTitle:(NSString*)title url:(NSURL*)url font:(NSFont*)font {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _url = url;
        self.bordered = NO;
        [self setButtonType:NSButtonTypeMomentaryChange];
        self.attributedTitle = [[NSAttributedString alloc]
            initWithString:title
                attributes:@{
                    NSFontAttributeName : font,
                    NSForegroundColorAttributeName : NSColor.linkColor,
                }];
        self.toolTip = url.absoluteString;
        self.target = self;
        self.action = @selector(open:);
    }
    return self;
}

- (void)resetCursorRects {
    [self addCursorRect:self.bounds cursor:NSCursor.pointingHandCursor];
}

- (void)open:(id)sender {
    (void)sender;
    if (_url != nil) {
        [NSWorkspace.sharedWorkspace openURL:_url];
    }
}

@end

namespace {

// The contact details are settings of the build (HG_ABOUT_* in CMake), so a
// distributor can put their own.
constexpr const char* contactHandle = HG_ABOUT_HANDLE;
constexpr const char* contactProfile = HG_ABOUT_PROFILE_URL;
constexpr const char* contactEmail = HG_ABOUT_EMAIL;
constexpr const char* sparkleHome = "https://sparkle-project.org";
constexpr const char* launchAtLoginHome = "https://github.com/sindresorhus/LaunchAtLogin";

constexpr hg::mac::TextStyle greyItalic{.colour = hg::mac::TextColour::grey, .italic = true};

NSTextField* label(std::string_view text, const hg::mac::TextStyle& style = {}) {
    return (__bridge_transfer NSTextField*)hg::mac::makeLabel(text, style);
}

NSButton* link(const char* title, NSString* address, const hg::mac::TextStyle& style = {}) {
    NSFont* font = (__bridge_transfer NSFont*)hg::mac::makeFont(style);
    return [[HGLinkButton alloc] initWithTitle:@(title)
                                           url:[NSURL URLWithString:address]
                                          font:font];
}

NSStackView* stack(NSArray<NSView*>* views, NSUserInterfaceLayoutOrientation orientation) {
    NSStackView* stackView = [NSStackView stackViewWithViews:views];
    stackView.orientation = orientation;
    stackView.alignment = orientation == NSUserInterfaceLayoutOrientationVertical
                              ? NSLayoutAttributeCenterX
                              : NSLayoutAttributeCenterY;
    return stackView;
}

// Texts and links run on as one line.
NSStackView* line(NSArray<NSView*>* views) {
    NSStackView* row = stack(views, NSUserInterfaceLayoutOrientationHorizontal);
    row.spacing = 0;
    return row;
}

NSView* iconAndVersion(const std::string& version) {
    NSImageView* icon = [[NSImageView alloc] initWithFrame:NSZeroRect];
    icon.image = [NSImage imageNamed:@"AppIcon"];
    // At its own size, unless that is wider than the window.
    icon.imageScaling = NSImageScaleProportionallyDown;
    for (const auto orientation :
         {NSLayoutConstraintOrientationHorizontal, NSLayoutConstraintOrientationVertical}) {
        [icon setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                       forOrientation:orientation];
    }
    const NSSize size = icon.image.size;
    if (size.width > 0 && size.height > 0) {
        // Shrunk, it keeps its proportions.
        [icon.widthAnchor constraintEqualToAnchor:icon.heightAnchor
                                       multiplier:size.width / size.height]
            .active = YES;
    }
    hg::mac::TextStyle caption = greyItalic;
    caption.font = hg::mac::TextFont::caption;
    return stack(@[ icon, label("v" + version, caption) ],
                 NSUserInterfaceLayoutOrientationVertical);
}

NSView* credits() {
    const CGFloat padding = hg::mac::defaultPadding;
    NSTextField* text = label("Hush Gremlin was designed and programmed by the HushGremlin "
                              "developers, at home in many cities.",
                              {.centred = true, .wrapWidth = 300 - 2 * padding});
    text.translatesAutoresizingMaskIntoConstraints = NO;
    NSView* area = [[NSView alloc] initWithFrame:NSZeroRect];
    [area addSubview:text];
    [NSLayoutConstraint activateConstraints:@[
        [area.heightAnchor constraintEqualToConstant:40],
        [text.centerYAnchor constraintEqualToAnchor:area.centerYAnchor],
        [text.leadingAnchor constraintEqualToAnchor:area.leadingAnchor constant:padding],
        [text.trailingAnchor constraintEqualToAnchor:area.trailingAnchor constant:-padding],
    ]];
    return area;
}

NSView* contact() {
    NSString* mail = [@"mailto:" stringByAppendingString:@(contactEmail)];
    return line(@[
        label("RSVP: "), link(contactHandle, @(contactProfile)), label(" or "),
        link(contactEmail, mail)
    ]);
}

NSView* components() {
    const hg::mac::TextStyle italic{.italic = true};
    return line(@[
        label("It uses ", greyItalic), link("Sparkle", @(sparkleHome), italic),
        label(" and ", greyItalic), link("LaunchAtLogin", @(launchAtLoginHome), italic),
        label(".", greyItalic)
    ]);
}

} // namespace

namespace hg::mac {

void* makeAboutView(const std::string& version) {
    NSView* sweet = label("Be sweet.", greyItalic);
    NSStackView* column = stack(
        @[
            iconAndVersion(version), credits(), contact(), components(),
            label("Copyright \u00A9 the HushGremlin developers", greyItalic), sweet
        ],
        NSUserInterfaceLayoutOrientationVertical);
    column.edgeInsets = NSEdgeInsetsMake(0, 0, 10, 0);
    return makeCentredHost((__bridge void*)column, 300, 500);
}

} // namespace hg::mac
