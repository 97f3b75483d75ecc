#pragma once

#include "ports/LineSink.hpp"
#include "ports/StatusItem.hpp"
#include "shells/qt/MenuApplier.hpp"
#include "shells/qt/MenuRowStyle.hpp"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
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
// its action fires. Main thread only.
class TrayStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    // The keyboard modifiers held now; tests replace the real query.
    using ModifierQuery = std::function<Qt::KeyboardModifiers()>;

    explicit TrayStatusItem(LineSink& out, ModifierQuery modifiers = {});
    ~TrayStatusItem() override;
    TrayStatusItem(const TrayStatusItem&) = delete;
    TrayStatusItem& operator=(const TrayStatusItem&) = delete;

    void setImage(const std::string& name) override;
    void setToolTip(const std::string& text) override;
    void setMenu(const MenuModel& menu) override;
    void setHandler(StatusItemHandler* handler) override;

    // Called once, on the event-loop turn after the icon was first shown.
    void setShownCallback(std::function<void()> callback) { shownCallback_ = std::move(callback); }
    // Called once, when the icon is first shown and no tray can show it.
    void setNoTrayCallback(std::function<void()> callback) {
        noTrayCallback_ = std::move(callback);
    }

    [[nodiscard]] QMenu& menu() { return menu_; }
    [[nodiscard]] const MenuApplier& applier() const { return applier_; }
    [[nodiscard]] const std::string& imageName() const { return imageName_; }
    [[nodiscard]] QIcon icon() const { return tray_.icon(); }
    [[nodiscard]] bool isMenuOpen() const { return open_; }

private:
    void menuAboutToShow();
    void menuAboutToHide();
    void rowTriggered(MenuAction action);
    void closeMenu();
    void showIcon();

    LineSink& out_;
    ModifierQuery modifiers_;
    MenuRowStyle style_;
    QMenu menu_;
    MenuApplier applier_;
    QSystemTrayIcon tray_;
    StatusItemHandler* handler_ = nullptr;
    std::optional<MenuModel> pending_;
    std::string imageName_;
    std::function<void()> shownCallback_;
    std::function<void()> noTrayCallback_;
    std::uint64_t openings_ = 0;
    bool opening_ = false;
    bool open_ = false;
    bool shown_ = false;
};

} // namespace hg
