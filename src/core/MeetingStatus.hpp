#pragma once

#include <cstdint>
#include <string_view>

namespace hg {

enum class MeetingStatus : std::uint8_t {
    notRunning,
    noMeeting,
    onMute,
    offMute,
    setupError,
    error,
};

// The case name: "notRunning", "offMute", ...
[[nodiscard]] constexpr std::string_view toString(MeetingStatus status) {
    switch (status) {
    case MeetingStatus::notRunning:
        return "notRunning";
    case MeetingStatus::noMeeting:
        return "noMeeting";
    case MeetingStatus::onMute:
        return "onMute";
    case MeetingStatus::offMute:
        return "offMute";
    case MeetingStatus::setupError:
        return "setupError";
    case MeetingStatus::error:
        return "error";
    }
    return "error";
}

[[nodiscard]] constexpr bool isInMeeting(MeetingStatus s) {
    return s == MeetingStatus::onMute || s == MeetingStatus::offMute;
}

[[nodiscard]] constexpr bool isWithoutMeeting(MeetingStatus s) {
    return s == MeetingStatus::notRunning || s == MeetingStatus::noMeeting;
}

} // namespace hg
