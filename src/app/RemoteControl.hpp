#pragma once

#include "core/MeetingStatus.hpp"
#include "core/Observable.hpp"

namespace hg {

class AppDelegate;
class UserData;

// What scripts may do with the running program (the desktop's command line
// and its session-bus service): toggle as the menu's row does, press and
// release as the shortcut does, open the preferences or the debug panel, and
// read the shown status.
//
// Presses and releases take the shortcut's own path, double tap included. A
// press while a scripted press is held, and a release without one, are
// ignored: a script that loses track (a key binding whose press or release
// went to another program) never toggles twice, nor back what it did not
// toggle. Main thread only.
class RemoteControl {
public:
    // `delegate` must outlive this object.
    explicit RemoteControl(AppDelegate& delegate);
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    // Follows the status store from now on; the delegate calls it once it has
    // built the store.
    void watch(UserData& userData);

    void toggle();
    void press();
    void release();
    void showPreferences();
    // The debug panel, for desktops where the menu's hidden row is out of
    // reach (the window manager takes Alt+click, a tray host draws the menu).
    void showDebugView();

    // The status shown to the user; `error` (the store's first value) until
    // the store exists.
    [[nodiscard]] MeetingStatus status() const;
    // Announces every coming change of the status store (the status among
    // others), as its own observers are told: read status() on the next turn
    // of the event loop.
    [[nodiscard]] ObjectWillChange& statusWillChange() { return willChange_; }

    [[nodiscard]] bool isPressed() const { return pressed_; }

private:
    AppDelegate& delegate_;
    UserData* userData_ = nullptr;
    ObjectWillChange willChange_;
    ObjectWillChange::Subscription subscription_;
    bool pressed_ = false;
};

} // namespace hg
