#include "soak/SoakChecks.hpp"

#include "core/UserData.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "menu/GremlinMenu.hpp"

#include <algorithm>
#include <set>
#include <utility>

namespace hg::sim {

namespace {

// The menu without its debug row, which comes and goes with the option key
// without a status push.
MenuModel withoutDebugRow(MenuModel menu) {
    std::erase_if(menu.rows,
                  [](const MenuRow& row) { return row.tag == GremlinMenu::debugViewTag; });
    return menu;
}

} // namespace

SoakChecks::SoakChecks(SimDesktop& desktop) : desktop_(desktop) {
    desktop_.statusItem.onMenu = [this](const MenuModel& menu) { onMenu(menu); };
    desktop_.statusItem.onImage = [this](const std::string& name) { onImage(name); };
}

void SoakChecks::onMenu(const MenuModel& menu) {
    // A rebuilt menu that got no image is acceptable only if it was the debug
    // row coming or going, which is not a status push.
    if (pushPending_ && !pendingMayBeDebugRow_) {
        problems_.emplace_back("a status push set no image");
    }
    pendingMayBeDebugRow_ = !lastMenu_.rows.empty() && !(menu == lastMenu_) &&
                            withoutDebugRow(menu) == withoutDebugRow(lastMenu_);
    pushPending_ = true;
    lastMenu_ = menu;
}

void SoakChecks::onImage(const std::string& name) {
    if (!pushPending_) {
        if (name != "SideEyeIcon") {
            problems_.push_back("image " + name + " set without a status push");
        }
        return;
    }
    pushPending_ = false;
    const std::string& row = lastMenu_.rows.empty() ? std::string() : lastMenu_.rows.front().title;
    const bool fits = (row == "No meeting detected" && name == "NoMeetingIcon") ||
                      (row == "Toggle Mute" && (name == "OnMuteIcon" || name == "OffMuteIcon")) ||
                      ((row == "Setup Required..." || row == "Error...") && name == "ErrorIcon");
    if (!fits) {
        problems_.push_back("image " + name + " with the menu row " + row);
    }
}

std::vector<std::string> SoakChecks::check() {
    std::vector<std::string> problems = std::exchange(problems_, {});
    if (pushPending_ && !pendingMayBeDebugRow_) {
        problems.emplace_back("a status push set no image");
    }
    pushPending_ = false;
    const AppDelegate* app = desktop_.app();
    if (app == nullptr || app->userData() == nullptr) {
        return problems;
    }
    const UserData& store = *app->userData();
    const auto& history = store.statusHistory();
    if (history.size() > UserData::historyLimit) {
        problems.push_back("history holds " + std::to_string(history.size()) + " entries");
    }
    if (!history.empty() && history.front().id != store.statusCounts() - 1) {
        problems.push_back("newest history id " + std::to_string(history.front().id) + " after " +
                           std::to_string(store.statusCounts()) + " snapshots");
    }
    for (std::size_t i = 1; i < history.size(); ++i) {
        if (history[i].id != history[i - 1].id - 1) {
            problems.push_back("history ids " + std::to_string(history[i - 1].id) + " then " +
                               std::to_string(history[i].id));
        }
    }

    const auto& rows = desktop_.statusItemState.menu().rows;
    const auto debugRows = std::count_if(rows.begin(), rows.end(), [](const MenuRow& row) {
        return row.tag == GremlinMenu::debugViewTag;
    });
    if (debugRows > (desktop_.statusItemState.isOpen() ? 1 : 0)) {
        problems.push_back(std::to_string(debugRows) + " debug rows in the menu");
    }

    std::set<std::string> autosaveNames;
    for (const auto& window : desktop_.windows.windows()) {
        if (!autosaveNames.insert(window.description.frameAutosaveName).second) {
            problems.push_back("a second window " + window.description.frameAutosaveName);
        }
    }
    if (desktop_.eventTap.isInstalled() && app->hotkeyMonitor() != nullptr &&
        !app->hotkeyMonitor()->isRunning()) {
        problems.emplace_back("a tap is installed for a stopped monitor");
    }
    return problems;
}

} // namespace hg::sim
