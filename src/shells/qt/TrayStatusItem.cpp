#include "shells/qt/TrayStatusItem.hpp"

#include "shells/qt/QtKeyCodes.hpp"
#include "shells/qt/views/NamedImages.hpp"

#include <QCursor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QGuiApplication>

namespace hg {

namespace {

// How often a missing tray is looked for again while the item waits for one.
constexpr std::chrono::milliseconds trayPollInterval{500};

// Whether a StatusNotifierItem host is registered on the session bus: the
// question Qt asks once, when it makes its first tray icon, to choose between
// exporting the icon and its menu over D-Bus and docking it by XEmbed.
bool statusNotifierHostRegistered() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return false;
    }
    QDBusMessage get = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QStringLiteral("org.kde.StatusNotifierWatcher")
        << QStringLiteral("IsStatusNotifierHostRegistered");
    get.setAutoStartService(false);
    const QDBusMessage reply = bus.call(get, QDBus::Block, 1000);
    return reply.type() == QDBusMessage::ReplyMessage &&
           reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

} // namespace

TrayStatusItem::TrayStatusItem(LineSink& out, Options options)
    : out_(out),
      modifiers_(options.modifiers ? std::move(options.modifiers)
                                   : ModifierQuery(&QGuiApplication::queryKeyboardModifiers)),
      applier_(menu_, [this](MenuAction action) { rowTriggered(action); }),
      trayWaitEnd_(std::chrono::steady_clock::now() + options.trayWait),
      exported_(options.exported ? *options.exported : statusNotifierHostRegistered()) {
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
                    popUp(QCursor::pos());
                }
            });
    trayWait_.setInterval(trayPollInterval);
    connect(&trayWait_, &QTimer::timeout, this, &TrayStatusItem::checkForTray);
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
    // Shown even without a tray: a tray that starts later picks it up.
    tray_.show();
    checkForTray();
    if (shownCallback_) {
        QTimer::singleShot(0, this, [this] {
            if (auto callback = std::exchange(shownCallback_, {})) {
                callback();
            }
        });
    }
}

void TrayStatusItem::checkForTray() {
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        trayWait_.stop();
        return;
    }
    if (std::chrono::steady_clock::now() < trayWaitEnd_) {
        if (!trayWait_.isActive()) {
            trayWait_.start();
        }
        return;
    }
    trayWait_.stop();
    out_.line("No system tray available: the menu is not shown; the shortcut still works");
    if (noTrayCallback_) {
        noTrayCallback_();
    }
}

void TrayStatusItem::popUp(const QPoint& at) {
    poppingUp_ = true;
    menu_.popup(at);
    poppingUp_ = false;
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
    // The host draws the exported menu from the rows it already has.
    if (exported_ && !poppingUp_) {
        return;
    }
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
