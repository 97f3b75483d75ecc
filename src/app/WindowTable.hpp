#pragma once

#include "ports/Windows.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hg {

// The application's windows: size, style, title and frame autosave name of
// each. Titles of the per-app setup windows come from the app.
struct WindowRow {
    int width = 0;
    int height = 0;
    std::uint32_t styleMask = 0;
    std::string_view title; // empty: set per window, or none for the debug panel
    std::string_view autosaveName;
    bool panel = false;

    // A description for this row; `windowTitle` replaces the row's own when given.
    [[nodiscard]] WindowSpec description(WindowContent content,
                                  std::optional<std::string> windowTitle = std::nullopt) const {
        WindowSpec s;
        if (windowTitle) {
            s.title = std::move(windowTitle);
        } else if (!title.empty()) {
            s.title = std::string(title);
        }
        s.contentWidth = width;
        s.contentHeight = height;
        s.styleMask = styleMask;
        s.frameAutosaveName = std::string(autosaveName);
        s.panel = panel;
        s.content = std::move(content);
        return s;
    }
};

namespace windowtable {

inline constexpr std::uint32_t setupStyle = windowstyle::titled | windowstyle::closable |
                                            windowstyle::miniaturizable |
                                            windowstyle::fullSizeContentView;

inline constexpr WindowRow accessibilitySetup{
    560, 620, setupStyle, "HushGremlin Accessibility", "AX Setup Window", false};
// Title: the app's setupWindowTitle; autosave name: the app's name followed by this.
inline constexpr WindowRow appSetup{500, 350, setupStyle, "", "", false};
inline constexpr std::string_view appSetupAutosaveSuffix = " Setup Window";
inline constexpr WindowRow preferences{300,
                                       200,
                                       windowstyle::titled | windowstyle::closable |
                                           windowstyle::miniaturizable,
                                       "Hush Gremlin Preferences",
                                       "HG Prefs",
                                       false};
inline constexpr WindowRow about{300, 500, setupStyle, "About Hush Gremlin", "HG About", false};
inline constexpr WindowRow debug{
    480, 300,           setupStyle | windowstyle::resizable | windowstyle::nonactivatingPanel,
    "",  "Main Window", true};

} // namespace windowtable

} // namespace hg
