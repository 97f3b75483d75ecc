#pragma once

#include "ports/StatusItem.hpp"

#include <memory>

namespace hg {

// The status item as an NSStatusItem of fixed width (28 points) in the system
// status bar, with an NSMenu built from each menu model.
//
// While the menu is closed every model gets a fresh NSMenu. While it is open
// the model goes into that same NSMenu, rows removed and inserted in place, so
// that a row added as the menu opens (the debug row) shows in the menu that is
// opening. A model set after the menu has closed waits for the next turn of the
// run loop, so that the chosen row's action, which AppKit sends after the
// close, still finds its row. The close is always reported before the choice.
// Main thread only; the shared NSApplication must exist.
class MacStatusItem final : public StatusItem {
public:
    MacStatusItem();
    ~MacStatusItem() override;
    MacStatusItem(const MacStatusItem&) = delete;
    MacStatusItem& operator=(const MacStatusItem&) = delete;

    void setImage(const std::string& name) override;
    // The menu-bar item keeps to its icon and menu: no tooltip.
    void setToolTip(const std::string& text) override;
    void setMenu(const MenuModel& menu) override;
    void setHandler(StatusItemHandler* handler) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
