#pragma once

#include "ports/Platform.hpp"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hg {

class DoubleTap;
class GlobalHotkeyMonitor;
class GremlinMenu;
class HotkeyRecorder;
class LaunchAtLogin;
class MeetingApp;
class RemoteControl;
class UserData;
class UserPrefs;
class Watcher;

// The composition root: builds every long-lived part from the platform's
// ports, wires their callbacks, turns shortcut presses into mute toggles
// (push-to-talk, with a double tap changing the resting state), follows
// Accessibility trust with the event tap, and opens the windows on demand.
// Everything it builds lives as long as it does. Main thread only.
class AppDelegate {
public:
    static constexpr std::string_view tupleCLIPath = "/usr/local/bin/tuple";

    // `platform` and every port in it must outlive this object. Builds nothing
    // yet: that is startUp(), once the application has finished launching.
    explicit AppDelegate(Platform& platform);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    // Builds and starts everything. Call once.
    void startUp();
    // The application is about to end: a farewell line, nothing saved.
    void applicationWillTerminate();

    // Where key events never carry fn, the default shortcut cannot be
    // pressed: the first start with no shortcut stored opens Preferences,
    // once, saying so, with the shortcut recorder ready.
    static constexpr std::string_view askedForShortcutKey = "asked_for_shortcut";
    static constexpr std::string_view noFunctionKeyNotice =
        "fn can't be used here: type a shortcut";

    // A new hotkey monitor whose press and release go through one shared
    // double-tap detector; started and kept.
    void setupBinding();
    // The shortcut went down, or came up: the double-tap detector first, then
    // the status store; the second release of a double tap toggles nothing.
    // Every source of presses comes here: the monitor, and scripts through the
    // remote control. Nothing happens before startUp().
    void shortcutDown();
    void shortcutUp();
    // A held shortcut ends without its release toggling back (a script set
    // the mute explicitly): the double-tap detector starts afresh.
    void shortcutHoldDropped();
    // The watcher saw Accessibility trust gained (true) or lost (false).
    void axChanged(bool hasAX);
    // The menu's "Setup Required..." / "Error...": the Accessibility window
    // when untrusted, else the setup window of the first app needing setup.
    void handleAXError();
    // The update framework found a valid update.
    void updaterDidFindValidUpdate();

    // Each builds its window on first use and brings the same one forward on
    // every call; all but the debug panel activate the application first.
    void showAXSetupWindow();
    void showSetupWindow(MeetingApp& app);
    // `notice`: a sentence above the shortcut, when the window is first built.
    void showPrefsWindow(std::string notice = {});
    void showAboutWindow();
    void showDebugWindow();

    // Null (or empty) before startUp() built them.
    [[nodiscard]] UserData* userData() const { return userData_.get(); }
    [[nodiscard]] GremlinMenu* gremlinBarItem() const { return gremlinBarItem_.get(); }
    [[nodiscard]] Watcher* watcher() const { return watcher_.get(); }
    [[nodiscard]] GlobalHotkeyMonitor* hotkeyMonitor() const { return hotkeyMonitor_.get(); }
    [[nodiscard]] const DoubleTap* doubleTap() const { return doubleTap_.get(); }
    // What scripts may do; exists from construction.
    [[nodiscard]] RemoteControl& remoteControl() const { return *remoteControl_; }
    [[nodiscard]] const std::vector<std::shared_ptr<MeetingApp>>& meetingApps() const {
        return meetingApps_;
    }
    // Made with the preferences window.
    [[nodiscard]] UserPrefs* userPrefs() const { return userPrefs_.get(); }
    [[nodiscard]] HotkeyRecorder* hotkeyRecorder() const { return hotkeyRecorder_.get(); }
    [[nodiscard]] LaunchAtLogin* launchAtLogin() const { return launchAtLogin_.get(); }

    [[nodiscard]] std::optional<WindowId> axSetupWindow() const { return axSetupWindow_; }
    [[nodiscard]] const std::map<std::string, WindowId, std::less<>>& setupWindows() const {
        return setupWindows_;
    }
    [[nodiscard]] std::optional<WindowId> prefsWindow() const { return prefsWindow_; }
    [[nodiscard]] std::optional<WindowId> aboutWindow() const { return aboutWindow_; }
    [[nodiscard]] std::optional<WindowId> debugWindow() const { return debugWindow_; }

    // The build's version, shown in the About window where the platform's
    // package declares none; "?" when the build has none either.
    [[nodiscard]] static std::string applicationVersion();

private:
    void askForAShortcutOnce();
    // The name of the app in a meeting, or empty.
    [[nodiscard]] std::string activeAppName() const;
    // Activates the application (unless `activate` is false) and brings the
    // window forward.
    void bringForward(WindowId id, bool activate = true);

    Platform& platform_;

    // Declared so that everything holding references into the status store
    // and the menu is destroyed before them.
    std::unique_ptr<GremlinMenu> gremlinBarItem_;
    std::unique_ptr<UserData> userData_;
    std::vector<std::shared_ptr<MeetingApp>> meetingApps_;
    std::shared_ptr<DoubleTap> doubleTap_;
    std::unique_ptr<GlobalHotkeyMonitor> hotkeyMonitor_;
    std::unique_ptr<Watcher> watcher_;
    std::unique_ptr<UserPrefs> userPrefs_;
    std::unique_ptr<HotkeyRecorder> hotkeyRecorder_;
    std::unique_ptr<LaunchAtLogin> launchAtLogin_;
    std::unique_ptr<RemoteControl> remoteControl_;

    std::optional<WindowId> debugWindow_;
    std::optional<WindowId> axSetupWindow_;
    std::map<std::string, WindowId, std::less<>> setupWindows_;
    std::optional<WindowId> prefsWindow_;
    std::optional<WindowId> aboutWindow_;

    // Window actions and the updater's callback may outlive this object (the
    // platform keeps them); they hold this weakly and do nothing once it is gone.
    std::shared_ptr<AppDelegate*> self_;
};

} // namespace hg
