#pragma once

#include "core/MeetingStatus.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace hg {

// What `hushgremlin status` prints: the shown status and the app in a
// meeting, or that the program does not run.
struct StatusReport {
    // None when the program does not run.
    std::optional<MeetingStatus> status;
    // The app in a meeting; empty for none.
    std::string app;

    // The status's case name, or "HushGremlin is not running".
    [[nodiscard]] std::string line() const;
    // One JSON object on one line, as status bars take it (waybar's
    // `return-type: json`): "status" (the case name, "unavailable" when the
    // program does not run), "app" (null for none), "text" (one short word),
    // "tooltip" (the tray's tooltip) and "class" (the status again, for
    // style sheets).
    [[nodiscard]] std::string json() const;

    bool operator==(const StatusReport&) const = default;

    // The status of a case name, as the program's status property gives it;
    // none for anything else.
    [[nodiscard]] static std::optional<MeetingStatus> statusNamed(std::string_view name);

    static constexpr std::string_view unavailable = "unavailable";
    static constexpr std::string_view notRunningLine = "HushGremlin is not running";
};

} // namespace hg
