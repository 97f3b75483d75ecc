#pragma once

#include <optional>

namespace hg {

// The system's default audio input, the one call apps record from when the
// user has not picked another. Asked once a second while the user wants it;
// a reading answers within a fraction of a second and setting the mute within
// about a second, also when the audio server hangs. Main thread only.
//
// A backend that cannot reach an audio service (none on the platform, no
// server running) is "not available": nothing records, the mute cannot be
// read, and setting it fails. Backends say why on their own diagnostic lines.
class Microphone {
public:
    virtual ~Microphone() = default;

    // Whether some other application records from the default input now.
    // False when that cannot be told.
    virtual bool isInUse() = 0;

    // Whether the default input is muted; none when it cannot be read.
    virtual std::optional<bool> isMuted() = 0;

    // Mutes or unmutes the default input; false when that failed.
    virtual bool setMuted(bool muted) = 0;
};

} // namespace hg
