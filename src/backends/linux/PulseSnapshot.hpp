#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <pulse/def.h>
#include <string>
#include <vector>

namespace hg {

// What the audio server holds that the microphone's answers come from, as
// read at one moment.
struct PulseSource {
    std::uint32_t index = PA_INVALID_INDEX;
    bool muted = false;
    bool monitor = false;
    bool recording = false;
    bool operator==(const PulseSource&) const = default;
};

// A stream that records what the user says (see PulseMicrophone).
struct PulseStream {
    std::uint32_t index = PA_INVALID_INDEX;
    std::uint32_t source = PA_INVALID_INDEX;
    bool muted = false;
    bool operator==(const PulseStream&) const = default;
};

struct PulseSnapshot {
    std::string defaultName;
    std::map<std::string, PulseSource, std::less<>> sources;
    std::vector<PulseStream> streams;
    bool operator==(const PulseSnapshot&) const = default;

    // The name of the source with `index`; empty when there is none.
    [[nodiscard]] std::string sourceName(std::uint32_t index) const {
        for (const auto& [name, source] : sources) {
            if (source.index == index) {
                return name;
            }
        }
        return {};
    }
};

} // namespace hg
