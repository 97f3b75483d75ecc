#include "backends/linux/PulseMicrophone.hpp"

#include "backends/linux/PulseConnection.hpp"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <pulse/introspect.h>
#include <pulse/proplist.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace hg {

namespace {

using Clock = PulseConnection::Clock;

struct Source {
    std::uint32_t index = PA_INVALID_INDEX;
    bool muted = false;
    bool monitor = false;
    bool recording = false;
    bool operator==(const Source&) const = default;
};

// What the server holds that the answers come from.
struct Snapshot {
    std::string defaultName;
    std::map<std::string, Source, std::less<>> sources;
    bool operator==(const Snapshot&) const = default;
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
    ~Impl() { unwatch(); }

    LineSink& out;
    Options options;
    std::unique_ptr<PulseConnection> connection;
    // The server reported a change since the last reading.
    bool stale = true;
    // Empty while the server cannot be read.
    std::optional<Snapshot> snapshot;
    std::optional<Clock::time_point> retryAt;
    bool outageSaid = false;
    std::function<void()> onChange;
    std::vector<QSocketNotifier*> notifiers;
    std::vector<int> watched;
    // Owns the pending re-reading, so that it goes with this object.
    std::unique_ptr<QObject> laterContext = std::make_unique<QObject>();
    bool rereadPending = false;

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
        unwatch();
        connection.reset();
        snapshot.reset();
        retryAt = Clock::now() + options.retryAfter;
        out.line("Microphone: lost the audio server (" + why + ")");
        outageSaid = true;
    }

    // Reads the server's sources and streams again when it has reported a
    // change. False when the server could not be read.
    bool current() {
        const bool ok = read();
        watch();
        return ok;
    }

    bool read() {
        if (!connected()) {
            return false;
        }
        if (!stale && snapshot) {
            return true;
        }
        stale = false;
        const auto deadline = Clock::now() + options.readTimeout;
        std::string why;
        Snapshot next;
        pa_context* context = connection->context();
        if (!connection->await(pa_context_get_server_info(
                                   context,
                                   [](pa_context*, const pa_server_info* info, void* data) {
                                       if (info != nullptr && info->default_source_name) {
                                           static_cast<Snapshot*>(data)->defaultName =
                                               info->default_source_name;
                                       }
                                   },
                                   &next),
                               deadline, why) ||
            !connection->await(
                pa_context_get_source_info_list(
                    context,
                    [](pa_context*, const pa_source_info* info, int eol, void* data) {
                        if (eol == 0 && info != nullptr && info->name != nullptr) {
                            static_cast<Snapshot*>(data)->sources[info->name] =
                                Source{info->index, info->mute != 0,
                                       info->monitor_of_sink != PA_INVALID_INDEX, false};
                        }
                    },
                    &next),
                deadline, why)) {
            lost(why);
            return false;
        }
        std::vector<std::uint32_t> recorded;
        if (!connection->await(
                pa_context_get_source_output_info_list(
                    context,
                    [](pa_context*, const pa_source_output_info* info, int eol, void* data) {
                        if (eol == 0 && info != nullptr && records(*info)) {
                            static_cast<std::vector<std::uint32_t>*>(data)->push_back(info->source);
                        }
                    },
                    &recorded),
                deadline, why)) {
            lost(why);
            return false;
        }
        for (auto& [name, source] : next.sources) {
            // A sink's monitor is never a microphone.
            source.recording = !source.monitor && std::find(recorded.begin(), recorded.end(),
                                                            source.index) != recorded.end();
        }
        snapshot = std::move(next);
        return true;
    }

    [[nodiscard]] const Source* find(const std::string& name) const {
        if (!snapshot) {
            return nullptr;
        }
        const auto found = snapshot->sources.find(name);
        return found != snapshot->sources.end() ? &found->second : nullptr;
    }

    // Follows the connection's descriptors from the main loop, so that a
    // change is read as soon as the server announces it.
    void watch() {
        if (!onChange || connection == nullptr) {
            unwatch();
            return;
        }
        if (stale && !rereadPending) {
            // A change arrived while a request was waiting for its answer:
            // the socket has nothing more to say, so read it from the loop.
            rereadPending = true;
            QTimer::singleShot(0, laterContext.get(), [this] {
                rereadPending = false;
                announced();
            });
        }
        if (connection->readDescriptors() == watched) {
            return;
        }
        unwatch();
        watched = connection->readDescriptors();
        for (const int descriptor : watched) {
            auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read);
            QObject::connect(notifier, &QSocketNotifier::activated, [this] { announced(); });
            notifiers.push_back(notifier);
        }
    }

    void unwatch() {
        // Possibly from inside a notifier's own signal: later, not now.
        for (QSocketNotifier* notifier : notifiers) {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
        notifiers.clear();
        watched.clear();
    }

    // The server sent something: a change that alters an answer is passed
    // on; a volume change, say, is not.
    void announced() {
        const auto before = snapshot;
        current();
        if (snapshot != before && onChange) {
            onChange();
        }
    }
};

PulseMicrophone::PulseMicrophone(LineSink& out, Options options)
    : impl_(std::make_unique<Impl>(out, options)) {}

PulseMicrophone::~PulseMicrophone() = default;

std::string PulseMicrophone::defaultInput() {
    if (!impl_->current()) {
        return {};
    }
    return impl_->snapshot->defaultName;
}

std::optional<bool> PulseMicrophone::isRecording(const std::string& input) {
    impl_->current();
    const Source* source = impl_->find(input);
    return source != nullptr ? std::optional<bool>(source->recording) : std::nullopt;
}

std::optional<std::vector<std::string>> PulseMicrophone::recordedInputs() {
    if (!impl_->current()) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    for (const auto& [name, source] : impl_->snapshot->sources) {
        if (source.recording) {
            names.push_back(name);
        }
    }
    return names;
}

std::optional<bool> PulseMicrophone::isMuted(const std::string& input) {
    impl_->current();
    const Source* source = impl_->find(input);
    return source != nullptr ? std::optional<bool>(source->muted) : std::nullopt;
}

bool PulseMicrophone::setMuted(const std::string& input, bool muted) {
    Impl& impl = *impl_;
    impl.current();
    if (impl.find(input) == nullptr) {
        return false;
    }
    bool done = false;
    std::string why;
    if (!impl.connection->await(pa_context_set_source_mute_by_name(
                                    impl.connection->context(), input.c_str(), muted ? 1 : 0,
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
        impl.out.line("Microphone: the audio server refused to set the mute of " + input);
        return false;
    }
    impl.snapshot->sources[input].muted = muted;
    impl.watch();
    return true;
}

void PulseMicrophone::setChangeHandler(std::function<void()> onChange) {
    impl_->onChange = std::move(onChange);
    if (impl_->connection != nullptr) {
        impl_->watch();
    } else {
        impl_->unwatch();
    }
}

} // namespace hg
