#pragma once

#include "core/Observable.hpp"
#include "hotkey/Hotkey.hpp"
#include "ports/KeyboardLayout.hpp"
#include "ports/LocalKeyMonitor.hpp"
#include "ports/UserDefaults.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace hg {

// What the shortcut field of the preferences window does, without its
// drawing: a click starts recording, and the next key with a modifier, or the
// first release of a modifier, becomes the stored shortcut. Nothing is reported
// to anyone: the monitor reads the store on every key event.
//
// While recording, every key-down and modifier change that reaches the
// application is consumed, used or not. Announces before every change of
// what it shows. Main thread only.
class HotkeyRecorder {
public:
    static constexpr std::uint16_t escapeKeyCode = 53;

    HotkeyRecorder(UserDefaults& defaults, const KeyboardLayout& layout,
                   LocalKeyMonitor& localKeyMonitor);
    ~HotkeyRecorder();
    HotkeyRecorder(const HotkeyRecorder&) = delete;
    HotkeyRecorder& operator=(const HotkeyRecorder&) = delete;

    [[nodiscard]] ObjectWillChange& objectWillChange() { return willChange_; }

    [[nodiscard]] bool isRecording() const { return isRecording_; }
    // The shortcut shown when not recording: the stored one at construction,
    // then the last one recorded.
    [[nodiscard]] const Hotkey& hotkey() const { return hotkey_; }

    // "Type shortcut…" while recording, else the shortcut's display string.
    [[nodiscard]] std::string shownText() const;
    // The Globe-key note for the shortcut shown (GlobeKeyNote.hpp), if any.
    [[nodiscard]] std::optional<std::string> globeKeyNote() const;

    // A mouse-down in the field: starts recording, or cancels it.
    void click();
    void startRecording();
    // Ends recording without storing anything; harmless when not recording.
    void stopRecording();
    // The field stopped being the focused control (another control clicked,
    // window closed): a recording in progress is cancelled.
    void focusLost();

    // One captured event. True when it changed something (gathered a
    // modifier, stored a shortcut, cancelled); false when it was ignored.
    bool handleRecording(const LocalKeyEvent& event);

private:
    void record(Hotkey hotkey);

    UserDefaults& defaults_;
    const KeyboardLayout& layout_;
    LocalKeyMonitor& localKeyMonitor_;
    ObjectWillChange willChange_;
    Published<Hotkey> hotkey_;
    Published<bool> isRecording_;
    std::optional<std::uint64_t> localMonitor_;
    std::uint64_t recordedModifiers_ = 0;
};

} // namespace hg
