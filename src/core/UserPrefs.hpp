#pragma once

#include "core/Observable.hpp"
#include "ports/UserDefaults.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace hg {

// The switches behind the preferences window, mirrored into the user
// defaults at once so the watcher, which reads the keys directly, sees every
// change. Main thread only.
class UserPrefs {
public:
    static constexpr std::string_view zoomKey = "muteOnJoin_Zoom";
    static constexpr std::string_view tupleKey = "muteOnJoin_Tuple";
    // The system microphone as a call source of its own: off while absent.
    static constexpr std::string_view microphoneKey = "muteMicrophoneInOtherApps";
    // Mute on join for that source: on while absent, and never written before
    // the user sets it, so that nothing is stored for a source never used.
    static constexpr std::string_view microphoneMuteOnJoinKey = "muteOnJoin_Microphone";

    // Writes true for each of the Zoom and Tuple keys the store lacks, then
    // reads every key. `defaults` must outlive this object. With
    // `updatesOffReason` the update check is unavailable, for that reason.
    UserPrefs(UserDefaults& defaults, std::function<void()> checkForUpdatesCallback,
              std::optional<std::string> updatesOffReason = std::nullopt);
    UserPrefs(const UserPrefs&) = delete;
    UserPrefs& operator=(const UserPrefs&) = delete;

    [[nodiscard]] ObjectWillChange& objectWillChange() { return objectWillChange_; }

    // Setters announce the change, then write it through.
    [[nodiscard]] bool muteOnJoinZoom() const { return muteOnJoinZoom_; }
    void setMuteOnJoinZoom(bool value);
    [[nodiscard]] bool muteOnJoinTuple() const { return muteOnJoinTuple_; }
    void setMuteOnJoinTuple(bool value);
    [[nodiscard]] bool muteMicrophoneInOtherApps() const { return muteMicrophoneInOtherApps_; }
    void setMuteMicrophoneInOtherApps(bool value);
    [[nodiscard]] bool muteOnJoinMicrophone() const { return muteOnJoinMicrophone_; }
    void setMuteOnJoinMicrophone(bool value);

    // Asks the updater to check now; may be empty.
    [[nodiscard]] const std::function<void()>& checkForUpdatesCallback() const {
        return checkForUpdatesCallback_;
    }
    // Set when updates are off: "Check For Updates..." is then disabled, with
    // this sentence as its tooltip, rather than doing nothing when pressed.
    [[nodiscard]] const std::optional<std::string>& updatesOffReason() const {
        return updatesOffReason_;
    }

private:
    UserDefaults& defaults_;
    std::function<void()> checkForUpdatesCallback_;
    std::optional<std::string> updatesOffReason_;
    ObjectWillChange objectWillChange_;
    Published<bool> muteOnJoinZoom_;
    Published<bool> muteOnJoinTuple_;
    Published<bool> muteMicrophoneInOtherApps_;
    Published<bool> muteOnJoinMicrophone_;
};

} // namespace hg
