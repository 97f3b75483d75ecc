#include "core/UserPrefs.hpp"

#include <utility>

namespace hg {

namespace {

// Absent keys count as true everywhere; storing that makes it explicit.
UserDefaults& withDefaultsStored(UserDefaults& defaults) {
    for (const auto key : {UserPrefs::zoomKey, UserPrefs::tupleKey}) {
        if (!defaults.hasObject(key)) {
            defaults.setBool(key, true);
        }
    }
    return defaults;
}

} // namespace

UserPrefs::UserPrefs(UserDefaults& defaults, std::function<void()> checkForUpdatesCallback)
    : defaults_(withDefaultsStored(defaults)),
      checkForUpdatesCallback_(std::move(checkForUpdatesCallback)),
      muteOnJoinZoom_(objectWillChange_, defaults_.boolForKey(zoomKey)),
      muteOnJoinTuple_(objectWillChange_, defaults_.boolForKey(tupleKey)) {}

void UserPrefs::setMuteOnJoinZoom(bool value) {
    muteOnJoinZoom_ = value;
    defaults_.setBool(zoomKey, value);
}

void UserPrefs::setMuteOnJoinTuple(bool value) {
    muteOnJoinTuple_ = value;
    defaults_.setBool(tupleKey, value);
}

} // namespace hg
