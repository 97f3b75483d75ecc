#include "hotkey/GlobalHotkeyMonitor.hpp"

#include "ports/ModifierKeys.hpp"

namespace hg {

// Nothing in this file may print a key code or character: the tap sees every
// keystroke of the session, passwords included.

GlobalHotkeyMonitor::GlobalHotkeyMonitor(EventTap& eventTap, const UserDefaults& defaults,
                                         LineSink& out)
    : eventTap_(eventTap), defaults_(defaults), out_(out) {}

GlobalHotkeyMonitor::~GlobalHotkeyMonitor() {
    if (running_) {
        eventTap_.remove();
    }
}

void GlobalHotkeyMonitor::start() {
    stop();
    if (!eventTap_.install([this](const TapEvent& event) { return handleTapEvent(event); })) {
        out_.line("Failed to create event tap \u2014 check Accessibility permissions");
        return;
    }
    running_ = true;
    eventTap_.setEnabled(true);
}

void GlobalHotkeyMonitor::stop() {
    if (!running_) {
        return;
    }
    eventTap_.setEnabled(false);
    eventTap_.remove();
    running_ = false;
}

TapDecision GlobalHotkeyMonitor::handleTapEvent(const TapEvent& event) {
    if (event.type == tapevent::disabledByTimeout || event.type == tapevent::disabledByUserInput) {
        // The tap is off while this runs, so no keystroke waits for the
        // trust check.
        if (running_ && (!isTrusted || isTrusted())) {
            eventTap_.setEnabled(true);
        }
        return TapDecision::pass;
    }
    if (event.autorepeat != 0) {
        return TapDecision::pass;
    }
    // Keyboard events never carry a key code outside 16 bits; anything else is
    // not ours to judge.
    if (event.keyCode < 0 || event.keyCode > Hotkey::noKey) {
        return TapDecision::pass;
    }
    const auto keyCode = static_cast<std::uint16_t>(event.keyCode);
    const std::uint64_t eventModifiers = event.flags & Hotkey::significantMask;

    switch (event.type) {
    case tapevent::keyDown:
        return handlePress(keyCode, eventModifiers);
    case tapevent::keyUp:
        return handleRelease(keyCode);
    case tapevent::flagsChanged: {
        const std::uint64_t bit = modifierBitForKeyCode(keyCode);
        if (bit == 0) {
            return TapDecision::pass; // caps lock and unknown keys
        }
        return (eventModifiers & bit) != 0 ? handlePress(keyCode, eventModifiers)
                                           : handleRelease(keyCode);
    }
    default:
        return TapDecision::pass;
    }
}

TapDecision GlobalHotkeyMonitor::handlePress(std::uint16_t keyCode, std::uint64_t eventModifiers) {
    // Read on every press: the recorder writes the store and nothing else
    // tells this monitor about it.
    const Hotkey stored = Hotkey::load(defaults_);
    if (downHotkey_) {
        return TapDecision::pass;
    }
    const std::uint64_t storedModifiers = stored.modifiers & Hotkey::significantMask;
    std::uint16_t matchedKeyCode = keyCode;
    bool matches = false;
    if (modifierBitForKeyCode(keyCode) != 0) {
        // A modifier key completes only a modifier-only shortcut, once every
        // one of its modifiers, and no other, is down.
        matches = stored.keyCode == Hotkey::noKey && storedModifiers == eventModifiers;
        matchedKeyCode = Hotkey::noKey;
    } else {
        matches = keyCode == stored.keyCode && storedModifiers == eventModifiers;
    }
    if (!matches) {
        return TapDecision::pass;
    }
    downHotkey_ = Hotkey{matchedKeyCode, stored.modifiers};
    runAfterDecision(onDown);
    return TapDecision::remove;
}

TapDecision GlobalHotkeyMonitor::handleRelease(std::uint16_t keyCode) {
    const Hotkey stored = Hotkey::load(defaults_);
    if (!downHotkey_) {
        return TapDecision::pass;
    }
    bool matches = false;
    if (stored.keyCode != Hotkey::noKey) {
        // Modifiers are not compared: they may well be released first.
        matches = keyCode == stored.keyCode;
    } else {
        // Letting go of any one of the shortcut's modifiers ends the press.
        matches = (modifierBitForKeyCode(keyCode) & stored.modifiers) != 0;
    }
    if (!matches) {
        return TapDecision::pass;
    }
    downHotkey_.reset();
    runAfterDecision(onUp);
    return TapDecision::remove;
}

void GlobalHotkeyMonitor::runAfterDecision(const std::function<void()>& action) {
    if (!action) {
        return;
    }
    eventTap_.runAfterCallback([alive = std::weak_ptr<bool>(alive_), action] {
        if (alive.lock()) {
            action();
        }
    });
}

} // namespace hg
