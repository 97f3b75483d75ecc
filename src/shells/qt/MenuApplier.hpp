#pragma once

#include "ports/MenuModel.hpp"

#include <QObject>
#include <functional>
#include <vector>

class QAction;
class QMenu;

namespace hg {

// Keeps one QMenu showing the latest MenuModel by changing only what differs:
// rows equal in both stay the same QAction, a row that changed in place is
// retitled, and the rest are added or removed. A tray menu that is exported
// to the desktop (StatusNotifierItem) then sends a layout change only when
// something changed, not once a second.
class MenuApplier {
public:
    // Called when the user triggers the action of a row.
    using TriggerHandler = std::function<void(MenuAction)>;

    MenuApplier(QMenu& menu, TriggerHandler onTrigger);

    void apply(const MenuModel& model);

    [[nodiscard]] const MenuModel& shown() const { return shown_; }
    // The QAction of each shown row, top to bottom.
    [[nodiscard]] const std::vector<QAction*>& actions() const { return actions_; }

private:
    QAction* makeAction(const MenuRow& row);
    static void configure(QAction& action, const MenuRow& row);

    QMenu& menu_;
    TriggerHandler onTrigger_;
    MenuModel shown_;
    std::vector<QAction*> actions_;
};

} // namespace hg
