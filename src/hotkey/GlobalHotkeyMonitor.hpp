#pragma once

#include "hotkey/Hotkey.hpp"
#include "ports/EventTap.hpp"
#include "ports/LineSink.hpp"
#include "ports/UserDefaults.hpp"

#include <functional>
#include <optional>

namespace hg {

// Recognises presses and releases of the stored mute shortcut among every
// keyboard event of the session, removes them from the event stream and
// reports them through onDown / onUp. Everything else passes unchanged.
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

    // Replaces any installed tap with a new one. When the platform refuses it
    // (no Accessibility trust) prints one failure line and stays stopped; it
    // does not retry.
    void start();
    // Removes the tap; does nothing when stopped. downHotkey survives.
    void stop();
    [[nodiscard]] bool isRunning() const { return running_; }

    // The decision for one event delivered to the tap.
    TapDecision handleTapEvent(const TapEvent& event);

    // The shortcut currently held down, from its press to its release.
    [[nodiscard]] const std::optional<Hotkey>& downHotkey() const { return downHotkey_; }

private:
    TapDecision handlePress(std::uint16_t keyCode, std::uint64_t eventModifiers);
    TapDecision handleRelease(std::uint16_t keyCode);

    EventTap& eventTap_;
    const UserDefaults& defaults_;
    LineSink& out_;
    bool running_ = false;
    std::optional<Hotkey> downHotkey_;
};

} // namespace hg
