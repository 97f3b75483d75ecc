#pragma once

#include "core/MeetingStatus.hpp"
#include "ports/MenuModel.hpp"
#include "ports/StatusItem.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace hg {

// What the menu's rows do; supplied by the application delegate. An empty
// callback makes its row do nothing.
struct GremlinMenuCallbacks {
    std::function<void()> toggle, prefs, axErr, update, quit, debugView;
    // The name of the app in a meeting, for the tooltip; empty for none.
    std::function<std::string()> activeAppName;
};

// The status item's icon and menu. Decides nothing about meetings: the status
// store pushes every status in through updateMenu(), and each row hands its
// action to one callback. Main thread only.
class GremlinMenu final : public StatusItemHandler {
public:
    static constexpr int prefsTag = 42;
    static constexpr int debugViewTag = 43;
    static constexpr int updateTag = 44;
    // The option key in the current event's modifier flags.
    static constexpr std::uint64_t optionKeyMask = 0x80000;

    // Becomes the item's handler and shows the noMeeting look at once.
    // `menubarItem` must outlive this object.
    GremlinMenu(StatusItem& menubarItem, GremlinMenuCallbacks callbacks);
    ~GremlinMenu() override;
    GremlinMenu(const GremlinMenu&) = delete;
    GremlinMenu& operator=(const GremlinMenu&) = delete;

    // Replaces the menu by a fresh one for `status`, then sets its icon and
    // tooltip.
    void updateMenu(MeetingStatus status);

    // Takes effect from the next updateMenu().
    [[nodiscard]] bool hasUpdate() const { return hasUpdate_; }
    void setHasUpdate(bool hasUpdate) { hasUpdate_ = hasUpdate; }

    [[nodiscard]] StatusItem& menubarItem() { return menubarItem_; }
    // The menu last handed to the item, debug row included while it stands.
    [[nodiscard]] const MenuModel& menu() const { return menu_; }

    [[nodiscard]] static MenuModel buildMenu(MeetingStatus status, bool hasUpdate);
    [[nodiscard]] static std::string iconName(MeetingStatus status);
    // "Hush Gremlin: muted in Zoom"; `appName` may be empty.
    [[nodiscard]] static std::string toolTip(MeetingStatus status, const std::string& appName);

    void menuWillOpen(std::optional<std::uint64_t> currentEventModifiers) override;
    void menuDidClose() override;
    void rowChosen(MenuAction action) override;

private:
    StatusItem& menubarItem_;
    bool hasUpdate_ = false;
    GremlinMenuCallbacks callbacks_;
    MenuModel menu_;
};

} // namespace hg
