#pragma once

#include "backends/linux/PulseConnection.hpp"
#include "backends/linux/PulseSnapshot.hpp"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace hg {

// The mutes of the recording streams that go with the mute of an input.
// When the default input changes (a headset connects), the server moves the
// streams that follow the default to the new input at once, before anyone can
// mute that one: a call kept muted by its input's mute alone would speak
// through the new input for as long as that takes. A stream's own mute moves
// with it, so muting an input here mutes the streams that record from it too,
// and those that start on it while it stays muted.
//
// A stream's mute is lifted with its input's: when this program unmutes the
// input the stream is on, when someone else unmutes the input it was muted
// on (while it is still there), and when the program ends. A stream the
// server moved to an input that is not muted keeps its mute until that input
// is muted (it then goes with that one) or unmuted by this program.
class PulseStreamMutes {
public:
    using Clock = PulseConnection::Clock;

    // `input` was just muted (true) or unmuted by this program.
    // Each of these is false, with the reason in `why`, when the server
    // could not be reached; a stream that has just ended is no failure.
    bool inputSet(PulseConnection& connection, PulseSnapshot& snapshot, const std::string& input,
                  bool muted, Clock::time_point deadline, std::string& why);

    // After every new reading: mutes the streams new on an input muted here,
    // follows moved ones, lifts those whose input someone else unmuted, and
    // forgets those that ended.
    bool follow(PulseConnection& connection, PulseSnapshot& snapshot, Clock::time_point deadline,
                std::string& why);

    // Lifts every stream mute put on here (the program ends); the inputs'
    // own mutes stay as they are.
    void releaseAll(PulseConnection& connection, PulseSnapshot& snapshot,
                    Clock::time_point deadline);

    // The connection went: its stream numbers mean nothing on the next one,
    // and the inputs are read afresh.
    void reset();

private:
    static bool setStreamMuted(PulseConnection& connection, PulseStream& stream, bool muted,
                               Clock::time_point deadline, std::string& why);

    // The streams muted here, each with the input whose mute it goes with.
    std::map<std::uint32_t, std::string> muted_;
    // The inputs this program muted and has not seen unmuted since.
    std::set<std::string> mutedInputs_;
};

} // namespace hg
