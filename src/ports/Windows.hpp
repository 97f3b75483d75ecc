#pragma once

#include "ports/SetupView.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace hg {

class UserData;
class UserPrefs;
class HotkeyRecorder;
class LaunchAtLogin;

namespace windowstyle {
inline constexpr std::uint32_t titled = 0x1;
inline constexpr std::uint32_t closable = 0x2;
inline constexpr std::uint32_t miniaturizable = 0x4;
inline constexpr std::uint32_t resizable = 0x8;
inline constexpr std::uint32_t nonactivatingPanel = 0x80;
inline constexpr std::uint32_t fullSizeContentView = 0x8000;
} // namespace windowstyle

// What the windows show. The shell turns each into its widgets; the objects
// referred to outlive the window.
struct AccessibilitySetupContent {
    std::function<void()> promptAction; // the "Grant Acessibility Permission" button
    // A note about the fn / Globe key shown under the text when not empty.
    std::string globeKeyNote{};
};
struct AppSetupContent {
    SetupView view;
};
struct PreferencesContent {
    UserPrefs* prefs = nullptr;
    HotkeyRecorder* recorder = nullptr;
    LaunchAtLogin* launchAtLogin = nullptr;
    std::function<void()> showAbout; // the "About..." button
    // One sentence shown above the shortcut when not empty.
    std::string notice{};
};
struct AboutContent {
    std::string version; // shown after "v"
};
struct DebugContent {
    UserData* userData = nullptr;
};
using WindowContent = std::variant<AccessibilitySetupContent, AppSetupContent, PreferencesContent,
                                   AboutContent, DebugContent>;

struct WindowSpec {
    std::optional<std::string> title; // none: a window without a title (the debug panel)
    int contentWidth = 0;
    int contentHeight = 0;
    std::uint32_t styleMask = 0;
    std::string frameAutosaveName;
    bool panel = false; // a floating panel that stays on deactivation and does not activate
    WindowContent content;
};

using WindowId = std::uint64_t;

// The application's windows. A built window lives until the process ends;
// closing only hides it.
class Windows {
public:
    virtual ~Windows() = default;

    // Builds a window, centred, hidden. Never fails; the id is never 0.
    virtual WindowId create(WindowSpec description) = 0;

    // Shows the window and brings it to the front (without activating the
    // application, which is the caller's business).
    virtual void makeKeyAndOrderFront(WindowId id) = 0;

    // Hides the window, as its close button does. Unknown ids are ignored.
    virtual void close(WindowId id) = 0;
};

} // namespace hg
