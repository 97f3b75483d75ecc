#pragma once

#include "ports/LineSink.hpp"
#include "ports/StatusItem.hpp"
#include "shells/qt/MenuApplier.hpp"
#include "shells/qt/MenuRowStyle.hpp"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace hg {

// The status item as a system-tray icon with one persistent menu.
//
// Each new menu model is applied to the same QMenu by changing only what
// differs, and never while the menu is open: the latest model waits and is
// applied when the menu closes. A model set while the menu is about to open
// (the handler's menuWillOpen) is applied at once, so that it is the one that
// opens. The close is reported on the event-loop turn after the menu hides
// (or at once when a row is chosen), so that the chosen row still exists when
// its action fires.
//
// A tray host that speaks StatusNotifierItem draws the menu itself from the
// exported copy (com.canonical.dbusmenu). It lays the rows out before it
// tells us the menu opens, and some hosts (xfce4-panel) never tell us it
// closed. So the exported menu is kept current on every change, and an
// opening by the host is not reported to the handler: nothing changes rows
// under a menu the host has already laid out. The menu this item pops up
// itself (a left click) keeps the rules above.
//
// Where no tray shows the icon at first (a panel that starts after us at
// login), the item waits up to `trayWait` for one before it says so; a tray
// that appears meanwhile picks the icon up and nothing is said. Main thread
// only.
class TrayStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    // The keyboard modifiers held now; tests replace the real query.
    using ModifierQuery = std::function<Qt::KeyboardModifiers()>;

    static constexpr std::chrono::seconds defaultTrayWait{30};

    struct Options {
        ModifierQuery modifiers{};
        std::chrono::milliseconds trayWait = defaultTrayWait;
        // Whether the tray host draws the menu from its exported copy; by
        // default as Qt decides it (a StatusNotifierItem host on the session
        // bus when the icon is made).
        std::optional<bool> exported{};
    };

    TrayStatusItem(LineSink& out, Options options);
    explicit TrayStatusItem(LineSink& out) : TrayStatusItem(out, Options{}) {}
    ~TrayStatusItem() override;
    TrayStatusItem(const TrayStatusItem&) = delete;
    TrayStatusItem& operator=(const TrayStatusItem&) = delete;

    void setImage(const std::string& name) override;
    void setToolTip(const std::string& text) override;
    void setMenu(const MenuModel& menu) override;
    void setHandler(StatusItemHandler* handler) override;

    // Called once, on the event-loop turn after the icon was first shown.
    void setShownCallback(std::function<void()> callback) { shownCallback_ = std::move(callback); }
    // Called once, when no tray has shown the icon within the wait.
    void setNoTrayCallback(std::function<void()> callback) {
        noTrayCallback_ = std::move(callback);
    }

    // Opens the menu at `at` as this item's own popup (drawn by Qt).
    void popUp(const QPoint& at);

    [[nodiscard]] QMenu& menu() { return menu_; }
    [[nodiscard]] const MenuApplier& applier() const { return applier_; }
    [[nodiscard]] const std::string& imageName() const { return imageName_; }
    [[nodiscard]] QIcon icon() const { return tray_.icon(); }
    [[nodiscard]] bool isMenuOpen() const { return open_; }
    [[nodiscard]] bool isExported() const { return exported_; }

private:
    void menuAboutToShow();
    void menuAboutToHide();
    void rowTriggered(MenuAction action);
    void closeMenu();
    void showIcon();
    void checkForTray();

    LineSink& out_;
    ModifierQuery modifiers_;
    MenuRowStyle style_;
    QMenu menu_;
    MenuApplier applier_;
    QSystemTrayIcon tray_;
    QTimer trayWait_;
    std::chrono::steady_clock::time_point trayWaitEnd_;
    StatusItemHandler* handler_ = nullptr;
    std::optional<MenuModel> pending_;
    std::string imageName_;
    std::function<void()> shownCallback_;
    std::function<void()> noTrayCallback_;
    std::uint64_t openings_ = 0;
    bool exported_ = false;
    bool poppingUp_ = false;
    bool opening_ = false;
    bool open_ = false;
    bool shown_ = false;
};

} // namespace hg
