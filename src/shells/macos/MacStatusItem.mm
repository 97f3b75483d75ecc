#include "shells/macos/MacStatusItem.hpp"

#import <AppKit/AppKit.h>

#include <cstddef>
#include <optional>
#include <utility>

namespace {

NSString* toNSString(const std::string& text) {
    return [[NSString alloc] initWithBytes:text.data()
                                    length:text.size()
                                  encoding:NSUTF8StringEncoding];
}

SEL selectorFor(hg::MenuAction action) {
    switch (action) {
    case hg::MenuAction::none:
        break;
    case hg::MenuAction::toggleMute:
        return @selector(toggleMuteItem:);
    case hg::MenuAction::openPrefs:
        return @selector(openPrefsMenuItem:);
    case hg::MenuAction::axError:
        return @selector(axErrorMenuItem:);
    case hg::MenuAction::checkUpdate:
        return @selector(checkUpdateMenuItem:);
    case hg::MenuAction::quit:
        return @selector(quitMenuItem:);
    case hg::MenuAction::debugView:
        return @selector(debugViewItem:);
    }
    return nullptr;
}

// A row without an action has no target either: automatic enabling then shows
// it disabled.
NSMenuItem* makeItem(const hg::MenuRow& row, id target) {
    if (row.kind == hg::MenuRow::Kind::separator) {
        return [NSMenuItem separatorItem];
    }
    NSString* title = toNSString(row.title);
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:title
                                                  action:selectorFor(row.action)
                                           keyEquivalent:@""];
    if (row.action != hg::MenuAction::none) {
        item.target = target;
    }
    item.tag = row.tag;
    if (row.red) {
        item.attributedTitle = [[NSAttributedString alloc]
            initWithString:title
                attributes:@{NSForegroundColorAttributeName : NSColor.redColor}];
    }
    return item;
}

} // namespace

// Owns the NSStatusItem, is the delegate of every menu it builds and the
// target of every row with an action.
@interface HGStatusItemController : NSObject <NSMenuDelegate>
- (void)setImageNamed:(NSString*)name;
- (void)applyModel:(const hg::MenuModel&)model;
- (void)setHandler:(hg::StatusItemHandler*)handler;
- (void)removeFromStatusBar;
@end

@implementation HGStatusItemController {
    NSStatusItem* _item;
    hg::StatusItemHandler* _handler;
    // The model the status item's current menu was built from.
    hg::MenuModel _shown;
    // The menu between menuWillOpen: and menuDidClose:, else nil.
    NSMenu* _openMenu;
    // From menuDidClose: until the next turn of the run loop: models wait.
    bool _closing;
    std::optional<hg::MenuModel> _pending;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _handler = nullptr;
        _closing = false;
    }
    return self;
}

// The item appears in the menu bar when the application first shows
// something in it, not when the platform is put together.
- (NSStatusItem*)item {
    if (_item == nil) {
        _item = [[NSStatusBar systemStatusBar] statusItemWithLength:28.0];
    }
    return _item;
}

- (void)removeFromStatusBar {
    if (_item != nil) {
        [[NSStatusBar systemStatusBar] removeStatusItem:_item];
        _item = nil;
    }
}

- (void)setHandler:(hg::StatusItemHandler*)handler {
    _handler = handler;
}

- (void)setImageNamed:(NSString*)name {
    // The art carries the status in its colours, so it is not a template image
    // (which would draw every status as the same silhouette). A name the
    // bundle lacks gives nil: the button is left without an image.
    [self item].button.image = [NSImage imageNamed:name];
}

- (NSMenu*)buildMenu:(const hg::MenuModel&)model {
    NSMenu* menu = [[NSMenu alloc] init];
    menu.delegate = self;
    for (const hg::MenuRow& row : model.rows) {
        [menu addItem:makeItem(row, self)];
    }
    return menu;
}

// Changes `menu`, built from `_shown`, into `model`: the rows both share at
// the top and at the bottom stay, the ones between are replaced.
- (void)applyModel:(const hg::MenuModel&)model inPlaceTo:(NSMenu*)menu {
    const auto& from = _shown.rows;
    const auto& to = model.rows;
    if (static_cast<std::size_t>(menu.numberOfItems) != from.size()) {
        [menu removeAllItems];
        for (const hg::MenuRow& row : to) {
            [menu addItem:makeItem(row, self)];
        }
        _shown = model;
        return;
    }
    std::size_t top = 0;
    while (top < from.size() && top < to.size() && from[top] == to[top]) {
        ++top;
    }
    std::size_t bottom = 0;
    while (bottom < from.size() - top && bottom < to.size() - top &&
           from[from.size() - 1 - bottom] == to[to.size() - 1 - bottom]) {
        ++bottom;
    }
    for (std::size_t i = from.size() - bottom; i > top; --i) {
        [menu removeItemAtIndex:static_cast<NSInteger>(i - 1)];
    }
    for (std::size_t i = top; i < to.size() - bottom; ++i) {
        [menu insertItem:makeItem(to[i], self) atIndex:static_cast<NSInteger>(i)];
    }
    _shown = model;
}

- (void)applyModel:(const hg::MenuModel&)model {
    if (_openMenu != nil) {
        // Also the model set from within menuWillOpen:, which must be the one
        // that opens.
        [self applyModel:model inPlaceTo:_openMenu];
        return;
    }
    if (_closing) {
        _pending = model;
        return;
    }
    [self item].menu = [self buildMenu:model];
    _shown = model;
}

- (void)menuWillOpen:(NSMenu*)menu {
    if (_openMenu != nil) {
        return; // one opening reported twice
    }
    if (_pending) {
        // Reopened before the last close was finished: the waiting model first.
        [self applyModel:*_pending inPlaceTo:menu];
        _pending.reset();
    }
    _closing = false;
    _openMenu = menu;
    std::optional<std::uint64_t> modifiers;
    if (NSEvent* event = NSApp.currentEvent; event != nil) {
        modifiers = static_cast<std::uint64_t>(event.modifierFlags);
    }
    if (_handler != nullptr) {
        _handler->menuWillOpen(modifiers);
    }
}

- (void)menuDidClose:(NSMenu*)menu {
    if (menu != _openMenu) {
        return;
    }
    _openMenu = nil;
    _closing = true;
    if (_handler != nullptr) {
        _handler->menuDidClose();
    }
    // AppKit sends the chosen row's action after this returns: whatever the
    // close changes waits until then.
    __weak HGStatusItemController* weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
      [weakSelf finishClose];
    });
}

- (void)finishClose {
    if (!_closing) {
        return;
    }
    _closing = false;
    if (_pending) {
        hg::MenuModel model = std::move(*_pending);
        _pending.reset();
        [self applyModel:model];
    }
}

- (void)choose:(hg::MenuAction)action {
    // The close comes before the choice, whatever order AppKit picks.
    if (_openMenu != nil) {
        [self menuDidClose:_openMenu];
    }
    if (_handler != nullptr) {
        _handler->rowChosen(action);
    }
}

- (void)toggleMuteItem:(id)sender {
    (void)sender;
    [self choose:hg::MenuAction::toggleMute];
}

- (void)openPrefsMenuItem:(id)sender {
    (void)sender;
    [self choose:hg::MenuAction::openPrefs];
}

- (void)axErrorMenuItem:(id)sender {
    (void)sender;
    [self choose:hg::MenuAction::axError];
}

- (void)checkUpdateMenuItem:(id)sender {
    (void)sender;
    [self choose:hg::MenuAction::checkUpdate];
}

- (void)quitMenuItem:(id)sender {
    (void)sender;
    [self choose:hg::MenuAction::quit];
}

- (void)debugViewItem:(id)sender {
    (void)sender;
    [self choose:hg::MenuAction::debugView];
}

@end

namespace hg {

struct MacStatusItem::Impl {
    HGStatusItemController* controller = [[HGStatusItemController alloc] init];
};

MacStatusItem::MacStatusItem() : impl_(std::make_unique<Impl>()) {}

MacStatusItem::~MacStatusItem() {
    [impl_->controller setHandler:nullptr];
    [impl_->controller removeFromStatusBar];
}

void MacStatusItem::setToolTip(const std::string& text) {
    (void)text;
}

void MacStatusItem::setImage(const std::string& name) {
    [impl_->controller setImageNamed:toNSString(name)];
}

void MacStatusItem::setMenu(const MenuModel& menu) {
    [impl_->controller applyModel:menu];
}

void MacStatusItem::setHandler(StatusItemHandler* handler) {
    [impl_->controller setHandler:handler];
}

} // namespace hg
