#pragma once

#include "core/MeetingStatus.hpp"

#include <cstddef>
#include <string_view>

namespace hg {

// What Tuple's "state --format json" output says, given its raw bytes:
// {"in_call": false} is noMeeting; {"in_call": true, "call": {"muted": B}} is
// onMute for B true and offMute for B false. Anything else (bytes that are not
// UTF-8 or not JSON, a top level that is not an object, a key that is missing
// or not a Boolean where one is needed) is error. Keys not named here are
// ignored; only JSON true and false count as Booleans. Prints nothing, never
// throws for any input.
//
// The answer is one short object: a text longer than maxTupleStateBytes, or
// nested deeper than maxTupleStateDepth arrays and objects, is error without
// being read further.
[[nodiscard]] MeetingStatus decodeTupleState(std::string_view output);

inline constexpr std::size_t maxTupleStateBytes = 64 * 1024;
inline constexpr int maxTupleStateDepth = 32;

} // namespace hg
