#pragma once

#include "hotkey/Hotkey.hpp"
#include "ports/EventTap.hpp"
#include "ports/LineSink.hpp"
#include "ports/UserDefaults.hpp"

#include <functional>
#include <memory>
#include <optional>

namespace hg {

// Recognises presses and releases of the stored mute shortcut among every
// keyboard event of the session, removes them from the event stream and
// reports them through onDown / onUp. Everything else passes unchanged.
//
// The tap's callback only decides: onDown and onUp run after it has returned
// (EventTap::runAfterCallback), so a slow toggle never holds up the keyboard.
//
// The installed tap calls back into this object, so it must outlive the tap:
// the destructor removes a tap that is still installed. Main thread only.
class GlobalHotkeyMonitor {
public:
    GlobalHotkeyMonitor(EventTap& eventTap, const UserDefaults& defaults, LineSink& out);
    ~GlobalHotkeyMonitor();
    GlobalHotkeyMonitor(const GlobalHotkeyMonitor&) = delete;
    GlobalHotkeyMonitor& operator=(const GlobalHotkeyMonitor&) = delete;

    std::function<void()> onDown;
    std::function<void()> onUp;
    // Asked before a tap that the system disabled is enabled again: a process
    // that has just lost its Accessibility trust leaves it off. Unset: yes.
    std::function<bool()> isTrusted;

    // Replaces any installed tap with a new one. When the platform refuses it
    // (no Accessibility trust) prints one failure line and stays stopped; it
    // does not retry.
    void start();
    // Removes the tap; does nothing when stopped. downHotkey survives.
    void stop();
    [[nodiscard]] bool isRunning() const { return running_; }

    // The decision for one event delivered to the tap; the action it sets off
    // is queued to run after it.
    TapDecision handleTapEvent(const TapEvent& event);

    // The shortcut currently held down, from its press to its release.
    [[nodiscard]] const std::optional<Hotkey>& downHotkey() const { return downHotkey_; }

private:
    TapDecision handlePress(std::uint16_t keyCode, std::uint64_t eventModifiers);
    TapDecision handleRelease(std::uint16_t keyCode);
    void runAfterDecision(const std::function<void()>& action);

    EventTap& eventTap_;
    const UserDefaults& defaults_;
    LineSink& out_;
    bool running_ = false;
    std::optional<Hotkey> downHotkey_;
    // Queued actions hold this weakly and do nothing once the monitor is gone.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace hg
