#include "shells/sim/SimWindows.hpp"

#include "app/LaunchAtLogin.hpp"
#include "core/UserData.hpp"
#include "core/UserPrefs.hpp"
#include "hotkey/HotkeyRecorder.hpp"

#include <functional>

namespace hg::sim {

namespace {

// The action of an enabled button, or nothing. Copied out of the window's
// record: the action may build windows, which moves the records.
std::function<void()> buttonAction(const WindowContent& content, std::string_view button) {
    if (const auto* ax = std::get_if<AccessibilitySetupContent>(&content)) {
        if (button == "Grant Acessibility Permission") {
            return ax->promptAction;
        }
    } else if (const auto* prefs = std::get_if<PreferencesContent>(&content)) {
        if (button == "Check For Updates..." && prefs->prefs != nullptr) {
            return prefs->prefs->checkForUpdatesCallback();
        }
        if (button == "About...") {
            return prefs->showAbout;
        }
    } else if (const auto* debug = std::get_if<DebugContent>(&content)) {
        UserData* userData = debug->userData;
        if (userData == nullptr) {
            return {};
        }
        if (button == "Toggle Mute" && isInMeeting(userData->readStatus())) {
            return [userData] { userData->toggleMute(); };
        }
        if (button == "Press") {
            return [userData] { userData->refreshStatus(); };
        }
    }
    return {};
}

// The switches of the preferences window that UserPrefs holds, by label.
struct PrefsSwitch {
    std::string_view label;
    bool (UserPrefs::*get)() const;
    void (UserPrefs::*set)(bool);
};
constexpr PrefsSwitch prefsSwitches[] = {
    {"Zoom", &UserPrefs::muteOnJoinZoom, &UserPrefs::setMuteOnJoinZoom},
    {"Tuple", &UserPrefs::muteOnJoinTuple, &UserPrefs::setMuteOnJoinTuple},
    {"Microphone", &UserPrefs::muteOnJoinMicrophone, &UserPrefs::setMuteOnJoinMicrophone},
    {"Also mute the microphone in other call apps", &UserPrefs::muteMicrophoneInOtherApps,
     &UserPrefs::setMuteMicrophoneInOtherApps},
};

} // namespace

std::string SimWindows::titleOf(const FakeWindows::Window& window) {
    return window.description.title.value_or(std::string(debugTitle));
}

const FakeWindows::Window* SimWindows::shown(std::string_view title) const {
    if (title == debugTitle) {
        return windows_.findShown(std::nullopt);
    }
    return windows_.findShown(std::string(title));
}

bool SimWindows::press(std::string_view title, std::string_view button) {
    const auto* window = shown(title);
    if (window == nullptr) {
        return false;
    }
    const auto action = buttonAction(window->description.content, button);
    if (!action) {
        return false;
    }
    action();
    return true;
}

bool SimWindows::toggle(std::string_view title, std::string_view label, bool on) {
    const auto* window = shown(title);
    const auto* prefs =
        window != nullptr ? std::get_if<PreferencesContent>(&window->description.content) : nullptr;
    if (prefs == nullptr) {
        return false;
    }
    if (label == "Start Hush Gremlin on login" && prefs->launchAtLogin != nullptr) {
        if (prefs->launchAtLogin->isEnabled() != on) {
            prefs->launchAtLogin->setEnabled(on);
        }
        return true;
    }
    if (prefs->prefs == nullptr) {
        return false;
    }
    for (const auto& [name, get, set] : prefsSwitches) {
        if (label == name) {
            if ((prefs->prefs->*get)() != on) {
                (prefs->prefs->*set)(on);
            }
            return true;
        }
    }
    return false;
}

bool SimWindows::close(std::string_view title) {
    const auto* window = shown(title);
    if (window == nullptr) {
        return false;
    }
    HotkeyRecorder* recorder = nullptr;
    if (const auto* prefs = std::get_if<PreferencesContent>(&window->description.content)) {
        recorder = prefs->recorder;
    }
    windows_.close(window->id);
    if (recorder != nullptr) {
        recorder->focusLost();
    }
    return true;
}

bool SimWindows::clickRecorder() {
    for (const WindowId id : windows_.frontOrder()) {
        const auto* window = windows_.find(id);
        const auto* prefs = std::get_if<PreferencesContent>(&window->description.content);
        if (prefs != nullptr && prefs->recorder != nullptr) {
            prefs->recorder->click();
            return true;
        }
    }
    return false;
}

void SimWindows::traceRecorder() {
    for (const auto& window : windows_.windows()) {
        const auto* prefs = std::get_if<PreferencesContent>(&window.description.content);
        if (prefs == nullptr || prefs->recorder == nullptr) {
            continue;
        }
        std::string text = prefs->recorder->shownText();
        if (text != recorderText_) {
            out_.observe("recorder " + text);
            recorderText_ = std::move(text);
        }
        return;
    }
}

} // namespace hg::sim
