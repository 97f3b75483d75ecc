#include "backends/linux/PulseMicrophone.hpp"

#include "backends/linux/PulseConnection.hpp"

#include <cstring>
#include <optional>
#include <pulse/introspect.h>
#include <pulse/proplist.h>
#include <string>
#include <unistd.h>

namespace hg {

namespace {

using Clock = PulseConnection::Clock;

struct Source {
    std::string name;
    std::uint32_t index = PA_INVALID_INDEX;
    bool muted = false;
    bool monitor = false;
};

bool equals(const char* text, const char* expected) {
    return text != nullptr && std::strcmp(text, expected) == 0;
}

// A stream that records what the user says: not paused, not a level meter
// (volume controls open peak-detect streams, resampled by "peaks"), not ours.
bool records(const pa_source_output_info& stream) {
    if (stream.corked != 0 || equals(stream.resample_method, "peaks") ||
        equals(pa_proplist_gets(stream.proplist, PA_PROP_MEDIA_NAME), "Peak detect")) {
        return false;
    }
    const std::string ours = std::to_string(::getpid());
    return !equals(pa_proplist_gets(stream.proplist, PA_PROP_APPLICATION_PROCESS_ID), ours.c_str());
}

} // namespace

struct PulseMicrophone::Impl {
    Impl(LineSink& sink, Options chosen) : out(sink), options(chosen) {}

    LineSink& out;
    Options options;
    std::unique_ptr<PulseConnection> connection;
    // The server reported a change since the last reading.
    bool stale = true;
    std::optional<Source> source; // the default source, when there is one
    bool inUse = false;
    std::optional<Clock::time_point> retryAt;
    bool outageSaid = false;

    bool connected() {
        if (connection != nullptr && connection->isReady()) {
            return true;
        }
        if (connection != nullptr) {
            lost("the connection closed");
        }
        if (retryAt && Clock::now() < *retryAt) {
            return false;
        }
        connection = std::make_unique<PulseConnection>([this] { stale = true; });
        std::string why;
        if (!connection->connect(Clock::now() + options.readTimeout, why)) {
            connection.reset();
            retryAt = Clock::now() + options.retryAfter;
            if (!outageSaid) {
                out.line("Microphone: cannot reach the audio server (" + why + ")");
                outageSaid = true;
            }
            return false;
        }
        out.line(outageSaid ? "Microphone: the audio server answers again"
                            : "Microphone: connected to the audio server");
        outageSaid = false;
        retryAt.reset();
        stale = true;
        return true;
    }

    void lost(const std::string& why) {
        connection.reset();
        source.reset();
        inUse = false;
        retryAt = Clock::now() + options.retryAfter;
        out.line("Microphone: lost the audio server (" + why + ")");
        outageSaid = true;
    }

    // Reads the default source and its streams again when the server has
    // reported a change. False when the server could not be read.
    bool current() {
        if (!connected()) {
            return false;
        }
        if (!stale) {
            return true;
        }
        stale = false;
        const auto deadline = Clock::now() + options.readTimeout;
        std::string why;
        std::string name;
        pa_context* context = connection->context();
        if (!connection->await(pa_context_get_server_info(
                                   context,
                                   [](pa_context*, const pa_server_info* info, void* data) {
                                       if (info != nullptr && info->default_source_name) {
                                           *static_cast<std::string*>(data) =
                                               info->default_source_name;
                                       }
                                   },
                                   &name),
                               deadline, why)) {
            lost(why);
            return false;
        }
        std::optional<Source> found;
        if (!name.empty() &&
            !connection->await(
                pa_context_get_source_info_by_name(
                    context, name.c_str(),
                    [](pa_context*, const pa_source_info* info, int eol, void* data) {
                        if (eol == 0 && info != nullptr) {
                            *static_cast<std::optional<Source>*>(data) =
                                Source{info->name, info->index, info->mute != 0,
                                       info->monitor_of_sink != PA_INVALID_INDEX};
                        }
                    },
                    &found),
                deadline, why)) {
            lost(why);
            return false;
        }
        struct Streams {
            std::uint32_t source;
            bool recording;
        } streams{found ? found->index : PA_INVALID_INDEX, false};
        if (found && !found->monitor &&
            !connection->await(
                pa_context_get_source_output_info_list(
                    context,
                    [](pa_context*, const pa_source_output_info* info, int eol, void* data) {
                        auto& seen = *static_cast<Streams*>(data);
                        if (eol == 0 && info != nullptr && info->source == seen.source &&
                            records(*info)) {
                            seen.recording = true;
                        }
                    },
                    &streams),
                deadline, why)) {
            lost(why);
            return false;
        }
        source = std::move(found);
        inUse = streams.recording;
        return true;
    }
};

PulseMicrophone::PulseMicrophone(LineSink& out, Options options)
    : impl_(std::make_unique<Impl>(out, options)) {}

PulseMicrophone::~PulseMicrophone() = default;

bool PulseMicrophone::isInUse() {
    return impl_->current() && impl_->inUse;
}

std::optional<bool> PulseMicrophone::isMuted() {
    if (!impl_->current() || !impl_->source) {
        return std::nullopt;
    }
    return impl_->source->muted;
}

bool PulseMicrophone::setMuted(bool muted) {
    Impl& impl = *impl_;
    if (!impl.current() || !impl.source) {
        return false;
    }
    bool done = false;
    std::string why;
    const std::string name = impl.source->name;
    if (!impl.connection->await(pa_context_set_source_mute_by_name(
                                    impl.connection->context(), name.c_str(), muted ? 1 : 0,
                                    [](pa_context*, int success, void* data) {
                                        *static_cast<bool*>(data) = success != 0;
                                    },
                                    &done),
                                Clock::now() + impl.options.commandTimeout, why)) {
        // What the server did meanwhile is unknown: read it afresh later.
        impl.lost(why);
        return false;
    }
    if (!done) {
        impl.out.line("Microphone: the audio server refused to set the mute of " + name);
        return false;
    }
    impl.source->muted = muted;
    return true;
}

} // namespace hg
