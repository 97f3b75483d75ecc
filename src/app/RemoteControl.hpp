#pragma once

#include "app/RemoteCommand.hpp"
#include "core/MeetingStatus.hpp"
#include "core/Observable.hpp"

#include <chrono>
#include <optional>
#include <string>

namespace hg {

class AppDelegate;
class UserData;

// When a scripted press or release was issued: the machine's monotonic clock
// (CLOCK_MONOTONIC, steady_clock), which every process on it shares.
using IssuedAt = std::chrono::nanoseconds;

// What scripts may do with the running program (the desktop's command line,
// its session-bus service, Apple Events and the URL scheme): toggle as the
// menu's row does, mute or unmute explicitly, press and release as the
// shortcut does, open the preferences or the debug panel, and read the
// shown status.
//
// Presses and releases take the shortcut's own path, double tap included, in
// the order they were issued rather than the order they arrive: two processes
// started together for a quick tap may reach the program release first. A
// release that comes before its press waits for it, and the two are applied
// together, press first. Two processes started together may also read the
// clock in either order: a release issued up to `issueSkew` before a press
// still belongs to it. A press while a scripted press is held, a release
// without one, and anything issued before the last release applied are
// ignored: a script that loses track (a key binding whose press or release
// went to another program) never toggles twice, nor back what it did not
// toggle. Main thread only.
class RemoteControl {
public:
    static constexpr IssuedAt issueSkew = std::chrono::milliseconds(50);

    // `delegate` must outlive this object.
    explicit RemoteControl(AppDelegate& delegate);
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    // Follows the status store from now on; the delegate calls it once it has
    // built the store.
    void watch(UserData& userData);

    void toggle();
    // Toggles through the store only when the shown status is the other one
    // of a call, so the store's rules hold. An explicit state ends a scripted
    // hold: its release will not toggle back.
    MuteResult setMuted(bool muted);
    void press(IssuedAt at);
    void release(IssuedAt at);
    void showPreferences();
    // The debug panel, for desktops where the menu's hidden row is out of
    // reach (the window manager takes Alt+click, a tray host draws the menu).
    void showDebugView();

    // The status shown to the user; `error` (the store's first value) until
    // the store exists.
    [[nodiscard]] MeetingStatus status() const;
    // The name of the app in a meeting; empty for none. While the shown
    // status is still a call's (the store's quiet time after a toggle), the
    // app that had it.
    [[nodiscard]] std::string activeAppName();
    // Announces every coming change of the status store (the status among
    // others), as its own observers are told: read status() on the next turn
    // of the event loop.
    [[nodiscard]] ObjectWillChange& statusWillChange() { return willChange_; }

    [[nodiscard]] bool isPressed() const { return pressedAt_.has_value(); }

private:
    void applyPress(IssuedAt at);
    void applyRelease(IssuedAt at);

    AppDelegate& delegate_;
    UserData* userData_ = nullptr;
    ObjectWillChange willChange_;
    ObjectWillChange::Subscription subscription_;
    std::string lastAppName_;
    std::optional<IssuedAt> pressedAt_;
    // A release that arrived with no press held, waiting for an earlier one.
    std::optional<IssuedAt> earlyRelease_;
    // Nothing issued before this is applied any more.
    IssuedAt settledUntil_{IssuedAt::min()};
};

} // namespace hg
