#pragma once

#include "core/MeetingStatus.hpp"

#include <cstdint>

namespace hg {

// One snapshot of the status store, for the debug view's history list.
struct StatusSet {
    std::int64_t id = 0;
    MeetingStatus truest = MeetingStatus::error;
    MeetingStatus read = MeetingStatus::error;
    bool hasAX = false;

    friend bool operator==(const StatusSet&, const StatusSet&) = default;
};

} // namespace hg
