#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace hg {

// The system's audio inputs, above all the default one, the input call apps
// record from when the user has not picked another. Inputs are named by the
// audio service's own stable name for them (PulseAudio's source name, Core
// Audio's device UID), so that a name kept in the settings still means the
// same input after a restart. A reading answers within a fraction of a
// second and setting the mute within about a second, also when the audio
// service hangs. Main thread only.
//
// A backend that cannot reach an audio service (none on the platform, no
// server running) knows nothing: no default input, and every question about
// an input answers "unknown". Backends say why on their own diagnostic lines.
class Microphone {
public:
    virtual ~Microphone() = default;

    // The default input's name; empty when there is none or it is unknown.
    virtual std::string defaultInput() = 0;

    // Whether some other application records from `input` now; none when
    // that cannot be told (the service is out of reach, the input is gone).
    virtual std::optional<bool> isRecording(const std::string& input) = 0;

    // The inputs some other application records from now; none when that
    // cannot be told.
    virtual std::optional<std::vector<std::string>> recordedInputs() = 0;

    // Whether `input` is muted; none when it cannot be read.
    virtual std::optional<bool> isMuted(const std::string& input) = 0;

    // Mutes or unmutes `input`; false when that failed.
    virtual bool setMuted(const std::string& input, bool muted) = 0;

    // `onChange` runs on the main thread, from the main loop and never from
    // inside a call of this object, soon after what the questions above
    // answer may have changed: a recording started or ended, a mute or the
    // default input changed. A backend that cannot tell calls nothing, and
    // its answers are only read when asked.
    virtual void setChangeHandler(std::function<void()> onChange) { (void)onChange; }
};

} // namespace hg
