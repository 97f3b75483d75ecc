#include "shells/macos/views/PrefsView.hpp"

#include "core/UserPrefs.hpp"
#include "hotkey/GlobeKeyNote.hpp"
#include "hotkey/HotkeyRecorder.hpp"
#include "shells/macos/views/HotkeyRecorderControl.hpp"
#include "shells/macos/views/LaunchAtLoginToggle.hpp"
#include "shells/macos/views/RedrawScheduler.hpp"
#include "shells/macos/views/ViewStyle.hpp"

#import <AppKit/AppKit.h>
#include <optional>

namespace {

// The window is small: tighter than the platform's spacing, so that every row
// but the microphone's two fits in 200 points; the window grows to show those.
constexpr CGFloat rowSpacing = 6;
constexpr CGFloat outerPadding = 8;
constexpr CGFloat belowButtons = 5;

NSStackView* row(NSArray<NSView*>* views, CGFloat spacing) {
    NSStackView* stack = [NSStackView stackViewWithViews:views];
    stack.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    stack.alignment = NSLayoutAttributeCenterY;
    stack.spacing = spacing;
    return stack;
}

} // namespace

@interface HGPrefsView : NSView
- (instancetype)initWithPrefs:(hg::UserPrefs*)prefs
                     recorder:(hg::HotkeyRecorder*)recorder
                launchAtLogin:(hg::LaunchAtLogin*)launchAtLogin
                    showAbout:(std::function<void()>)showAbout;
@end

@implementation HGPrefsView {
    hg::UserPrefs* _prefs;
    hg::HotkeyRecorder* _recorder;
    std::function<void()> _showAbout;
    std::optional<hg::mac::RedrawScheduler> _redraw;
    NSButton* _zoom;
    NSButton* _tuple;
    NSButton* _microphone;
    NSButton* _otherApps;
    NSTextField* _globeKeyNote;
}

- (instancetype)initWithPrefs:(hg::UserPrefs*)prefs
                     recorder:(hg::HotkeyRecorder*)recorder
                launchAtLogin:(hg::LaunchAtLogin*)launchAtLogin
                    showAbout:(std::function<void()>)showAbout {
    self = [super initWithFrame:NSMakeRect(0, 0, 300, 200)];
    if (self == nil) {
        return nil;
    }
    _prefs = prefs;
    _recorder = recorder;
    _showAbout = std::move(showAbout);

    NSView* field = (__bridge_transfer NSView*)hg::mac::makeHotkeyRecorderControl(*recorder);
    [field.widthAnchor constraintLessThanOrEqualToConstant:100].active = YES;
    NSView* shortcutRow =
        row(@[ [NSTextField labelWithString:@"Mute Shortcut:"], field ], rowSpacing);

    // Under the shortcut while it is fn alone and macOS acts on the Globe key.
    _globeKeyNote = (__bridge_transfer NSTextField*)hg::mac::makeLabel(
        std::string(hg::globeKeyNoteText), {.font = hg::mac::TextFont::caption,
                                            .colour = hg::mac::TextColour::secondary,
                                            .centred = true,
                                            .wrapWidth = 280});
    NSTextField* hint = (__bridge_transfer NSTextField*)hg::mac::makeLabel(
        "Double tap to toggle resting status",
        {.colour = hg::mac::TextColour::grey, .italic = true});
    NSButton* login = (__bridge_transfer NSButton*)hg::mac::makeLaunchAtLoginToggle(
        *launchAtLogin, "Start Hush Gremlin on login");

    NSTextField* heading = (__bridge_transfer NSTextField*)hg::mac::makeLabel(
        "Mute on join:", {.font = hg::mac::TextFont::headline});
    _zoom = [NSButton checkboxWithTitle:@"Zoom" target:self action:@selector(zoomToggled:)];
    _tuple = [NSButton checkboxWithTitle:@"Tuple" target:self action:@selector(tupleToggled:)];
    _microphone = [NSButton checkboxWithTitle:@"Microphone"
                                       target:self
                                       action:@selector(microphoneToggled:)];
    _otherApps = [NSButton checkboxWithTitle:@"Also mute the microphone in other call apps"
                                      target:self
                                      action:@selector(otherAppsToggled:)];
    NSStackView* muteOnJoin =
        [NSStackView stackViewWithViews:@[ heading, _zoom, _tuple, _microphone ]];
    muteOnJoin.orientation = NSUserInterfaceLayoutOrientationVertical;
    muteOnJoin.alignment = NSLayoutAttributeLeading;
    muteOnJoin.spacing = 2;

    NSButton* update = [NSButton buttonWithTitle:@"Check For Updates..."
                                          target:self
                                          action:@selector(checkForUpdates:)];
    if (const auto& off = _prefs->updatesOffReason()) {
        update.enabled = NO;
        update.toolTip = @(off->c_str());
    }
    NSButton* about = [NSButton buttonWithTitle:@"About..."
                                         target:self
                                         action:@selector(showAbout:)];
    // Each button keeps the default padding on the side facing the other.
    NSView* buttons = row(@[ update, about ], rowSpacing + 2 * hg::mac::defaultPadding);

    NSBox* upperDivider = (__bridge_transfer NSBox*)hg::mac::makeDivider();
    NSBox* lowerDivider = (__bridge_transfer NSBox*)hg::mac::makeDivider();
    NSStackView* column = [NSStackView stackViewWithViews:@[
        shortcutRow, _globeKeyNote, hint, login, upperDivider, _otherApps, muteOnJoin, lowerDivider,
        buttons
    ]];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeCenterX;
    column.spacing = rowSpacing;
    column.edgeInsets = NSEdgeInsetsMake(outerPadding, 0, outerPadding + belowButtons, 0);
    [column setHuggingPriority:NSLayoutPriorityDefaultHigh
                forOrientation:NSLayoutConstraintOrientationVertical];
    column.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:column];

    [NSLayoutConstraint activateConstraints:@[
        [column.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
        [column.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
        [column.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [column.topAnchor constraintGreaterThanOrEqualToAnchor:self.topAnchor],
        [upperDivider.widthAnchor constraintEqualToAnchor:column.widthAnchor],
        [lowerDivider.widthAnchor constraintEqualToAnchor:column.widthAnchor],
    ]];

    __weak HGPrefsView* weakSelf = self;
    _redraw.emplace([weakSelf] { [weakSelf redraw]; });
    _redraw->observe(prefs->objectWillChange());
    _redraw->observe(recorder->objectWillChange());
    [self redraw];
    return self;
}

- (void)redraw {
    _zoom.state = _prefs->muteOnJoinZoom() ? NSControlStateValueOn : NSControlStateValueOff;
    _tuple.state = _prefs->muteOnJoinTuple() ? NSControlStateValueOn : NSControlStateValueOff;
    _microphone.state =
        _prefs->muteOnJoinMicrophone() ? NSControlStateValueOn : NSControlStateValueOff;
    _otherApps.state =
        _prefs->muteMicrophoneInOtherApps() ? NSControlStateValueOn : NSControlStateValueOff;
    _globeKeyNote.hidden = !_recorder->globeKeyNote().has_value();
}

- (void)zoomToggled:(NSButton*)sender {
    _prefs->setMuteOnJoinZoom(sender.state == NSControlStateValueOn);
}

- (void)tupleToggled:(NSButton*)sender {
    _prefs->setMuteOnJoinTuple(sender.state == NSControlStateValueOn);
}

- (void)microphoneToggled:(NSButton*)sender {
    _prefs->setMuteOnJoinMicrophone(sender.state == NSControlStateValueOn);
}

- (void)otherAppsToggled:(NSButton*)sender {
    _prefs->setMuteMicrophoneInOtherApps(sender.state == NSControlStateValueOn);
}

- (void)checkForUpdates:(id)sender {
    (void)sender;
    if (const auto& callback = _prefs->checkForUpdatesCallback()) {
        callback();
    }
}

- (void)showAbout:(id)sender {
    (void)sender;
    if (_showAbout) {
        _showAbout();
    }
}

@end

namespace hg::mac {

void* makePrefsView(UserPrefs& prefs, HotkeyRecorder& recorder, LaunchAtLogin& launchAtLogin,
                    std::function<void()> showAbout) {
    return (__bridge_retained void*)[[HGPrefsView alloc] initWithPrefs:&prefs
                                                              recorder:&recorder
                                                         launchAtLogin:&launchAtLogin
                                                             showAbout:std::move(showAbout)];
}

} // namespace hg::mac
