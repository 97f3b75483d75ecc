#include "menu/GremlinMenu.hpp"

#include "apps/MicrophoneMeetingApp.hpp"

#include <utility>

namespace hg {

namespace {

MenuRow itemRow(std::string title, MenuAction action, int tag = 0, bool red = false) {
    return MenuRow{MenuRow::Kind::item, std::move(title), action, red, tag};
}

MenuRow statusRow(MeetingStatus status) {
    switch (status) {
    case MeetingStatus::notRunning:
    case MeetingStatus::noMeeting:
        return itemRow("No meeting detected", MenuAction::none);
    case MeetingStatus::onMute:
    case MeetingStatus::offMute:
        return itemRow("Toggle Mute", MenuAction::toggleMute);
    case MeetingStatus::setupError:
        return itemRow("Setup Required...", MenuAction::axError, 0, true);
    case MeetingStatus::error:
        break;
    }
    return itemRow("Error...", MenuAction::axError, 0, true);
}

} // namespace

GremlinMenu::GremlinMenu(StatusItem& menubarItem, GremlinMenuCallbacks callbacks)
    : menubarItem_(menubarItem), callbacks_(std::move(callbacks)) {
    menubarItem_.setHandler(this);
    updateMenu(MeetingStatus::noMeeting);
}

GremlinMenu::~GremlinMenu() {
    menubarItem_.setHandler(nullptr);
}

std::string GremlinMenu::iconName(MeetingStatus status) {
    switch (status) {
    case MeetingStatus::notRunning:
    case MeetingStatus::noMeeting:
        return "NoMeetingIcon";
    case MeetingStatus::onMute:
        return "OnMuteIcon";
    case MeetingStatus::offMute:
        return "OffMuteIcon";
    case MeetingStatus::setupError:
    case MeetingStatus::error:
        break;
    }
    return "ErrorIcon";
}

std::string GremlinMenu::toolTip(MeetingStatus status, const std::string& appName) {
    // The system microphone is a device, not an app a call runs "in".
    const bool microphone = appName == MicrophoneMeetingApp::appName;
    const std::string in = appName.empty() || microphone ? "" : " in " + appName;
    const std::string subject = microphone ? "microphone " : "";
    switch (status) {
    case MeetingStatus::notRunning:
    case MeetingStatus::noMeeting:
        return "Hush Gremlin: no meeting";
    case MeetingStatus::onMute:
        return "Hush Gremlin: " + subject + "muted" + in;
    case MeetingStatus::offMute:
        return "Hush Gremlin: " + subject + "live" + in;
    case MeetingStatus::setupError:
        return "Hush Gremlin: setup required";
    case MeetingStatus::error:
        break;
    }
    return "Hush Gremlin: error";
}

MenuModel GremlinMenu::buildMenu(MeetingStatus status, bool hasUpdate) {
    MenuModel menu;
    menu.rows.push_back(statusRow(status));
    menu.rows.push_back(MenuRow::separator());
    if (hasUpdate) {
        menu.rows.push_back(itemRow("Update Now...", MenuAction::checkUpdate, updateTag));
    }
    menu.rows.push_back(itemRow("Preferences...", MenuAction::openPrefs, prefsTag));
    menu.rows.push_back(MenuRow::separator());
    menu.rows.push_back(itemRow("Quit", MenuAction::quit));
    return menu;
}

void GremlinMenu::updateMenu(MeetingStatus status) {
    menu_ = buildMenu(status, hasUpdate_);
    menubarItem_.setMenu(menu_);
    menubarItem_.setImage(iconName(status));
    menubarItem_.setToolTip(
        toolTip(status, callbacks_.activeAppName ? callbacks_.activeAppName() : std::string()));
}

void GremlinMenu::menuWillOpen(std::optional<std::uint64_t> currentEventModifiers) {
    if (!currentEventModifiers || (*currentEventModifiers & optionKeyMask) == 0) {
        return;
    }
    // One debug row at most, even if an opening is reported twice.
    if (menu_.indexOfTag(debugViewTag) >= 0) {
        return;
    }
    const int at = menu_.indexOfTag(prefsTag);
    if (at < 0) {
        return;
    }
    menu_.rows.insert(menu_.rows.begin() + at,
                      itemRow("Show Debug View", MenuAction::debugView, debugViewTag));
    menubarItem_.setMenu(menu_);
}

void GremlinMenu::menuDidClose() {
    const int at = menu_.indexOfTag(debugViewTag);
    if (at < 0) {
        return;
    }
    menu_.rows.erase(menu_.rows.begin() + at);
    menubarItem_.setMenu(menu_);
}

void GremlinMenu::rowChosen(MenuAction action) {
    const std::function<void()>* callback = nullptr;
    switch (action) {
    case MenuAction::none:
        return;
    case MenuAction::toggleMute:
        callback = &callbacks_.toggle;
        break;
    case MenuAction::openPrefs:
        callback = &callbacks_.prefs;
        break;
    case MenuAction::axError:
        callback = &callbacks_.axErr;
        break;
    case MenuAction::checkUpdate:
        callback = &callbacks_.update;
        break;
    case MenuAction::quit:
        callback = &callbacks_.quit;
        break;
    case MenuAction::debugView:
        callback = &callbacks_.debugView;
        break;
    }
    // A copy, so a callback that ends this object (quit) does not run from
    // freed storage.
    const auto run = callback != nullptr ? *callback : std::function<void()>{};
    if (run) {
        run();
    }
}

} // namespace hg
