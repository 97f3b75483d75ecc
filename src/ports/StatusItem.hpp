#pragma once

#include "ports/MenuModel.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace hg {

// Receives what the user does with the status item's menu. Called on the main
// thread, from within the platform's menu handling.
class StatusItemHandler {
public:
    virtual ~StatusItemHandler() = default;

    // The menu is about to open. `currentEventModifiers` are the modifier flags
    // of the event that opened it (the platform's raw flag values, option is
    // 0x80000), or nothing when there is no current event. A menu set from
    // within this call is the one that opens.
    virtual void menuWillOpen(std::optional<std::uint64_t> currentEventModifiers) = 0;

    // The menu has closed, with or without a choice. Comes before rowChosen.
    virtual void menuDidClose() = 0;

    // The user chose an enabled row.
    virtual void rowChosen(MenuAction action) = 0;
};

// The status item in the menu bar (system tray): an image and a menu.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    // Shows the named image ("NoMeetingIcon", "SideEyeIcon", ...). A name the
    // resources lack leaves the item without an image. Never fails.
    virtual void setImage(const std::string& name) = 0;

    // The state in words, for platforms that show a tooltip over the item;
    // the others ignore it. Never fails.
    virtual void setToolTip(const std::string& text) = 0;

    // Replaces the menu with `menu`. While the menu is open the platform may
    // defer the change until it closes. Never fails.
    virtual void setMenu(const MenuModel& menu) = 0;

    // Where menu events go; nullptr detaches. The handler must outlive the item
    // or be detached first.
    virtual void setHandler(StatusItemHandler* handler) = 0;
};

} // namespace hg
