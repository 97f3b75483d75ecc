#include "core/UserPrefs.hpp"

#include <utility>

namespace hg {

namespace {

bool microphoneMuteOnJoin(const UserDefaults& defaults) {
    return !defaults.hasObject(UserPrefs::microphoneMuteOnJoinKey) ||
           defaults.boolForKey(UserPrefs::microphoneMuteOnJoinKey);
}

// Sets a published value only when it changed, so that a reload that finds
// nothing new redraws nothing.
void refresh(Published<bool>& field, bool value) {
    if (field != value) {
        field = value;
    }
}

} // namespace

UserPrefs::UserPrefs(UserDefaults& defaults, std::function<void()> checkForUpdatesCallback,
                     std::optional<std::string> updatesOffReason)
    : defaults_(defaults), checkForUpdatesCallback_(std::move(checkForUpdatesCallback)),
      updatesOffReason_(std::move(updatesOffReason)),
      muteOnJoinZoom_(objectWillChange_, true), muteOnJoinTuple_(objectWillChange_, true),
      muteMicrophoneInOtherApps_(objectWillChange_, false),
      muteOnJoinMicrophone_(objectWillChange_, true) {
    reload();
}

void UserPrefs::reload() {
    // Absent keys count as true everywhere; storing that makes it explicit.
    // Each look is a fresh read of the store, never a remembered one.
    for (const auto key : {zoomKey, tupleKey}) {
        if (!defaults_.hasObject(key)) {
            defaults_.setBool(key, true);
        }
    }
    refresh(muteOnJoinZoom_, defaults_.boolForKey(zoomKey));
    refresh(muteOnJoinTuple_, defaults_.boolForKey(tupleKey));
    refresh(muteMicrophoneInOtherApps_, defaults_.boolForKey(microphoneKey));
    refresh(muteOnJoinMicrophone_, microphoneMuteOnJoin(defaults_));
}

void UserPrefs::setMuteOnJoinZoom(bool value) {
    muteOnJoinZoom_ = value;
    defaults_.setBool(zoomKey, value);
}

void UserPrefs::setMuteOnJoinTuple(bool value) {
    muteOnJoinTuple_ = value;
    defaults_.setBool(tupleKey, value);
}

void UserPrefs::setMuteMicrophoneInOtherApps(bool value) {
    muteMicrophoneInOtherApps_ = value;
    defaults_.setBool(microphoneKey, value);
}

void UserPrefs::setMuteOnJoinMicrophone(bool value) {
    muteOnJoinMicrophone_ = value;
    defaults_.setBool(microphoneMuteOnJoinKey, value);
}

} // namespace hg
