#include "hotkey/HotkeyRecorder.hpp"

#include "hotkey/GlobeKeyNote.hpp"
#include "ports/ModifierKeys.hpp"

namespace hg {

HotkeyRecorder::HotkeyRecorder(UserDefaults& defaults, const KeyboardLayout& layout,
                               LocalKeyMonitor& localKeyMonitor)
    : defaults_(defaults), layout_(layout), localKeyMonitor_(localKeyMonitor),
      hotkey_(willChange_, Hotkey::load(defaults)), isRecording_(willChange_, false) {}

HotkeyRecorder::~HotkeyRecorder() {
    // The handler refers to this object; it must not outlive it.
    if (localMonitor_) {
        localKeyMonitor_.remove(*localMonitor_);
    }
}

std::string HotkeyRecorder::shownText() const {
    if (isRecording_) {
        return "Type shortcut\u2026";
    }
    return hotkey_.get().displayString(&layout_);
}

std::optional<std::string> HotkeyRecorder::globeKeyNote() const {
    return hg::globeKeyNote(hotkey_.get(), layout_);
}

void HotkeyRecorder::click() {
    if (isRecording_) {
        stopRecording();
    } else {
        startRecording();
    }
}

void HotkeyRecorder::startRecording() {
    isRecording_ = true;
    recordedModifiers_ = 0;
    if (localMonitor_) {
        localKeyMonitor_.remove(*localMonitor_);
    }
    localMonitor_ = localKeyMonitor_.add([this](const LocalKeyEvent& event) {
        handleRecording(event);
        return true;
    });
}

void HotkeyRecorder::stopRecording() {
    isRecording_ = false;
    if (localMonitor_) {
        localKeyMonitor_.remove(*localMonitor_);
        localMonitor_.reset();
    }
}

void HotkeyRecorder::focusLost() {
    stopRecording();
}

void HotkeyRecorder::record(Hotkey hotkey) {
    hotkey_ = hotkey;
    hotkey.save(defaults_);
    stopRecording();
}

bool HotkeyRecorder::handleRecording(const LocalKeyEvent& event) {
    if (!isRecording_) {
        return false;
    }
    switch (event.type) {
    case LocalKeyEvent::Type::keyDown: {
        // Escape cancels, with or without modifiers, so it can never be part
        // of a shortcut.
        if (event.keyCode == escapeKeyCode) {
            stopRecording();
            return true;
        }
        const std::uint64_t modifiers = event.modifiers & Hotkey::significantMask;
        if (modifiers == 0) {
            return false; // a main key needs at least one modifier
        }
        record(Hotkey{event.keyCode, modifiers});
        return true;
    }
    case LocalKeyEvent::Type::flagsChanged: {
        const std::uint64_t bit = modifierBitForKeyCode(event.keyCode);
        if (bit == 0) {
            return false;
        }
        if ((event.modifiers & bit) != 0) {
            recordedModifiers_ |= bit;
            return true;
        }
        // The first release ends it, with every modifier seen going down,
        // held or not.
        record(Hotkey{Hotkey::noKey, recordedModifiers_});
        return true;
    }
    }
    return false;
}

} // namespace hg
