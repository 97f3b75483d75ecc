#include "shells/qt/TrayStatusItem.hpp"

#include "shells/qt/QtKeyCodes.hpp"
#include "shells/qt/views/NamedImages.hpp"

#include <QCursor>
#include <QGuiApplication>
#include <QTimer>

namespace hg {

TrayStatusItem::TrayStatusItem(LineSink& out, ModifierQuery modifiers)
    : out_(out), modifiers_(modifiers ? std::move(modifiers)
                                      : ModifierQuery(&QGuiApplication::queryKeyboardModifiers)),
      applier_(menu_, [this](MenuAction action) { rowTriggered(action); }) {
    style_.setParent(this);
    menu_.setStyle(&style_);
    connect(&menu_, &QMenu::aboutToShow, this, &TrayStatusItem::menuAboutToShow);
    connect(&menu_, &QMenu::aboutToHide, this, &TrayStatusItem::menuAboutToHide);
    tray_.setContextMenu(&menu_);
    tray_.setToolTip(QStringLiteral("Hush Gremlin"));
    // XEmbed trays report only the right button as the context click; a left
    // click opens the same menu, as it does on macOS.
    connect(&tray_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger && !menu_.isVisible()) {
                    menu_.popup(QCursor::pos());
                }
            });
}

TrayStatusItem::~TrayStatusItem() {
    tray_.setContextMenu(nullptr);
    menu_.setStyle(nullptr);
}

void TrayStatusItem::setToolTip(const std::string& text) {
    const QString tip = QString::fromStdString(text);
    // Set once a second with the menu: only a change reaches the tray host.
    if (tray_.toolTip() != tip) {
        tray_.setToolTip(tip);
    }
}

void TrayStatusItem::setImage(const std::string& name) {
    // The same image again (once a second while nothing changes) would make
    // an exported icon send its pixels to the desktop each time.
    if (name == imageName_ && shown_) {
        return;
    }
    imageName_ = name;
    tray_.setIcon(views::namedIcon(name));
    if (!shown_) {
        showIcon();
    }
}

void TrayStatusItem::showIcon() {
    shown_ = true;
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        out_.line("No system tray available: the menu is not shown; the shortcut still works");
        if (noTrayCallback_) {
            noTrayCallback_();
        }
    }
    // Shown even without a tray: an XEmbed tray that starts later picks it up.
    tray_.show();
    if (shownCallback_) {
        QTimer::singleShot(0, this, [this] {
            if (auto callback = std::exchange(shownCallback_, {})) {
                callback();
            }
        });
    }
}

void TrayStatusItem::setMenu(const MenuModel& menu) {
    if (open_ && !opening_) {
        pending_ = menu;
        return;
    }
    pending_.reset();
    applier_.apply(menu);
}

void TrayStatusItem::setHandler(StatusItemHandler* handler) {
    handler_ = handler;
}

void TrayStatusItem::menuAboutToShow() {
    // Reopened before the last close was handled: finish that one first, so
    // every opening is paired with its close.
    if (open_ && !opening_) {
        closeMenu();
    }
    ++openings_;
    // Some tray hosts report an opening twice; the handler copes with that.
    opening_ = true;
    open_ = true;
    if (handler_ != nullptr) {
        handler_->menuWillOpen(qtkeys::macModifierFlags(modifiers_()));
    }
    opening_ = false;
}

void TrayStatusItem::menuAboutToHide() {
    // A chosen row's action fires only after its menu has hidden, and the
    // close takes rows away (the debug row): a row removed now would never
    // fire. So the close waits for the next turn of the event loop, unless the
    // choice arrives first and handles it.
    QTimer::singleShot(0, this, [this, opening = openings_] {
        if (opening == openings_) {
            closeMenu();
        }
    });
}

void TrayStatusItem::closeMenu() {
    if (!open_) {
        return;
    }
    open_ = false;
    if (handler_ != nullptr) {
        handler_->menuDidClose();
    }
    if (pending_) {
        const MenuModel model = std::move(*pending_);
        pending_.reset();
        applier_.apply(model);
    }
}

void TrayStatusItem::rowTriggered(MenuAction action) {
    // A menu hides before its action fires, but a menu exported over D-Bus may
    // report the click first: the close always comes before the choice.
    closeMenu();
    if (handler_ != nullptr) {
        handler_->rowChosen(action);
    }
}

} // namespace hg
