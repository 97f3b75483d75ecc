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

UserPrefs::UserPrefs(UserDefaults& defaults, std::function<void()> checkForUpdatesCallback,
                     std::optional<std::string> updatesOffReason)
    : defaults_(withDefaultsStored(defaults)),
      checkForUpdatesCallback_(std::move(checkForUpdatesCallback)),
      updatesOffReason_(std::move(updatesOffReason)),
      muteOnJoinZoom_(objectWillChange_, defaults_.boolForKey(zoomKey)),
      muteOnJoinTuple_(objectWillChange_, defaults_.boolForKey(tupleKey)),
      muteMicrophoneInOtherApps_(objectWillChange_, defaults_.boolForKey(microphoneKey)),
      muteOnJoinMicrophone_(objectWillChange_, !defaults_.hasObject(microphoneMuteOnJoinKey) ||
                                                   defaults_.boolForKey(microphoneMuteOnJoinKey)) {}

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
