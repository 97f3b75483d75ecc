#include "backends/linux/PulseStreamMutes.hpp"

#include <algorithm>
#include <pulse/introspect.h>

namespace hg {

bool PulseStreamMutes::setStreamMuted(PulseConnection& connection, PulseStream& stream, bool muted,
                                      Clock::time_point deadline, std::string& why) {
    bool done = false;
    if (!connection.await(pa_context_set_source_output_mute(
                              connection.context(), stream.index, muted ? 1 : 0,
                              [](pa_context*, int success, void* data) {
                                  *static_cast<bool*>(data) = success != 0;
                              },
                              &done),
                          deadline, why)) {
        return false;
    }
    // Refused: the stream has just ended, and the next reading drops it.
    if (done) {
        stream.muted = muted;
    }
    return true;
}

bool PulseStreamMutes::inputSet(PulseConnection& connection, PulseSnapshot& snapshot,
                                const std::string& input, bool muted, Clock::time_point deadline,
                                std::string& why) {
    const auto source = snapshot.sources.find(input);
    if (source == snapshot.sources.end()) {
        return true;
    }
    if (muted) {
        mutedInputs_.insert(input);
    } else {
        mutedInputs_.erase(input);
    }
    for (PulseStream& stream : snapshot.streams) {
        if (stream.source != source->second.index) {
            continue;
        }
        if (muted && !stream.muted) {
            if (!setStreamMuted(connection, stream, true, deadline, why)) {
                return false;
            }
            if (stream.muted) {
                muted_[stream.index] = input;
            }
        } else if (!muted && muted_.contains(stream.index)) {
            muted_.erase(stream.index);
            if (stream.muted && !setStreamMuted(connection, stream, false, deadline, why)) {
                return false;
            }
        }
    }
    return true;
}

bool PulseStreamMutes::follow(PulseConnection& connection, PulseSnapshot& snapshot,
                              Clock::time_point deadline, std::string& why) {
    std::erase_if(muted_, [&snapshot](const auto& entry) {
        return std::none_of(
            snapshot.streams.begin(), snapshot.streams.end(),
            [&entry](const PulseStream& stream) { return stream.index == entry.first; });
    });
    for (PulseStream& stream : snapshot.streams) {
        const std::string input = snapshot.sourceName(stream.source);
        const auto source = snapshot.sources.find(input);
        if (source == snapshot.sources.end()) {
            continue;
        }
        const bool inputMuted = source->second.muted;
        const auto ours = muted_.find(stream.index);
        if (ours == muted_.end()) {
            // A stream new on an input muted here: the call reopened it.
            if (!stream.muted && inputMuted && mutedInputs_.contains(input)) {
                if (!setStreamMuted(connection, stream, true, deadline, why)) {
                    return false;
                }
                if (stream.muted) {
                    muted_[stream.index] = input;
                }
            }
            continue;
        }
        if (!stream.muted) {
            // Someone unmuted the stream itself.
            muted_.erase(ours);
        } else if (input != ours->second) {
            // Moved: it goes with its new input once that one is muted.
            if (inputMuted) {
                ours->second = input;
            }
        } else if (!inputMuted) {
            // Its input was unmuted, by someone else or this program.
            muted_.erase(ours);
            if (!setStreamMuted(connection, stream, false, deadline, why)) {
                return false;
            }
        }
    }
    std::erase_if(mutedInputs_, [&snapshot](const std::string& input) {
        const auto source = snapshot.sources.find(input);
        return source != snapshot.sources.end() && !source->second.muted;
    });
    return true;
}

void PulseStreamMutes::releaseAll(PulseConnection& connection, PulseSnapshot& snapshot,
                                  Clock::time_point deadline) {
    std::string why;
    for (PulseStream& stream : snapshot.streams) {
        if (muted_.contains(stream.index) && stream.muted &&
            !setStreamMuted(connection, stream, false, deadline, why)) {
            break;
        }
    }
    reset();
}

void PulseStreamMutes::reset() {
    muted_.clear();
    mutedInputs_.clear();
}

} // namespace hg
