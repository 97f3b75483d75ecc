#pragma once

#include "backends/fake/FakeWindows.hpp"
#include "shells/sim/SimOutput.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace hg::sim {

// The user's hands on the application's windows: buttons, toggles, the close
// box and the shortcut field, found by window title and label as shown. The
// untitled debug panel is called "debug".
class SimWindows {
public:
    static constexpr std::string_view debugTitle = "debug";

    SimWindows(FakeWindows& windows, SimOutput& out) : windows_(windows), out_(out) {}

    // Each is false when there is no such open window, or no such enabled
    // control in it; nothing happens then.
    bool press(std::string_view title, std::string_view button);
    bool toggle(std::string_view title, std::string_view label, bool on);
    bool close(std::string_view title);
    bool clickRecorder();

    // Traces the shortcut field's text when it differs from the last traced.
    void traceRecorder();

    // The window's title, or "debug" for the untitled panel.
    [[nodiscard]] static std::string titleOf(const FakeWindows::Window& window);

private:
    [[nodiscard]] const FakeWindows::Window* shown(std::string_view title) const;

    FakeWindows& windows_;
    SimOutput& out_;
    std::optional<std::string> recorderText_;
};

} // namespace hg::sim
