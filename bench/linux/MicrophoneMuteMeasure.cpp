// Measures the desktop program's mute of the system microphone against a
// real audio server (a private PipeWire with pipewire-pulse, parecord as the
// call app), from outside, as a user's audio server sees it:
//   - join: from the recording stream appearing (the server's "new
//     source-output" event) to the input read as muted;
//   - end: from the stream's removal to the input read as live again (the
//     grace period for a reopened stream included, and given apart);
//   - per case, N tries each: stuck muted (an input still muted 6 s after
//     the last recording ended) and made live (an input read live while a
//     call the program had muted recorded from it, with how long it was): a stream reopened after a
//     0.5 s gap, the default input changed mid-call (PipeWire moves the
//     stream to the new input), SIGTERM mid-call then a new start, the audio
//     server restarted mid-call.
// The input's mute is sampled with pactl as fast as it answers (a few ms
// each); events come from `pactl subscribe`, timestamped by a reader thread.
// Usage: microphone_mute_measure PROGRAM [N]

#include "PipeWireSession.hpp"

#include <QDir>
#include <QSettings>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <numeric>
#include <thread>

namespace hg::test {
namespace {

using Clock = std::chrono::steady_clock;
using Audio = PipeWireSession;

// The server's events, each with the time it was read.
class EventLog {
public:
    EventLog() {
        pipe_ = ::popen("exec pactl subscribe 2>/dev/null", "r");
        reader_ = std::thread([this] {
            char line[256];
            while (pipe_ != nullptr && std::fgets(line, sizeof line, pipe_) != nullptr) {
                const std::lock_guard lock(mutex_);
                events_.emplace_back(Clock::now(), line);
            }
        });
    }
    ~EventLog() {
        // pactl ends with its server; the reader then sees the end of file.
        reader_.detach();
    }

    // The time of the first event containing `text` read after `since`.
    std::optional<Clock::time_point> find(const std::string& text, Clock::time_point since,
                                          std::chrono::milliseconds limit = 5s) {
        const auto end = Clock::now() + limit;
        while (Clock::now() < end) {
            {
                const std::lock_guard lock(mutex_);
                for (const auto& [when, line] : events_) {
                    if (when >= since && line.find(text) != std::string::npos) {
                        return when;
                    }
                }
            }
            std::this_thread::sleep_for(1ms);
        }
        return std::nullopt;
    }

private:
    FILE* pipe_ = nullptr;
    std::thread reader_;
    std::mutex mutex_;
    std::vector<std::pair<Clock::time_point, std::string>> events_;
};

// The first time `input` reads as `wanted`, sampled until `limit`.
std::optional<Clock::time_point> whenMute(const char* input, const std::string& wanted,
                                          std::chrono::milliseconds limit) {
    const auto end = Clock::now() + limit;
    while (Clock::now() < end) {
        if (Audio::mute(input) == wanted) {
            return Clock::now();
        }
    }
    return std::nullopt;
}

// Whether `input` reads muted on every sample for `span`.
bool staysMuted(const char* input, std::chrono::milliseconds span) {
    return !whenMute(input, "no", span).has_value();
}

// The longest run of samples, over `span`, in which some input a stream
// records from read live (zero when none did), wherever the server moves the
// streams meanwhile.
Clock::duration longestLive(std::chrono::milliseconds span) {
    const auto end = Clock::now() + span;
    Clock::duration longest{};
    std::optional<Clock::time_point> liveSince;
    while (Clock::now() < end) {
        const bool muted = Audio::recordingsSilent();
        const auto now = Clock::now();
        if (!muted && !liveSince) {
            liveSince = now;
        }
        if (liveSince) {
            longest = std::max(longest, now - *liveSince);
        }
        if (muted) {
            liveSince.reset();
        }
    }
    return longest;
}

double ms(Clock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

void summary(const char* what, std::vector<double> values) {
    if (values.empty()) {
        std::cout << what << ": no value\n";
        return;
    }
    std::sort(values.begin(), values.end());
    std::cout << what << ": median " << values[values.size() / 2] << " ms, max " << values.back()
              << " ms, min " << values.front() << " ms (" << values.size() << " tries)\n";
}

struct Count {
    int stuck = 0;
    int live = 0;
    int tries = 0;
    void say(const char* what) const {
        std::cout << what << ": stuck muted " << stuck << " of " << tries << ", made live " << live
                  << " of " << tries << "\n";
    }
};

int measure(const std::string& programPath, int tries) {
    if (DesktopSession::shared() == nullptr) {
        std::cerr << "no private desktop: " << DesktopSession::skipReason() << "\n";
        return 1;
    }
    makeQtApplication();
    std::string whyNot;
    auto server = Audio::start(whyNot);
    if (server == nullptr) {
        std::cerr << whyNot << "\n";
        return 1;
    }
    constexpr const char* headset = "hg_headset_mic";
    Audio::addSource(headset);
    Audio::setDefaultSource(Audio::source);
    std::cout << run(QStringLiteral("pipewire"), {QStringLiteral("--version")}).value_or("?")
              << "\n";

    const std::string config = DesktopSession::shared()->scratchDir() + "/measure-config";
    QDir().mkpath(QString::fromStdString(config + "/HushGremlin"));
    QSettings settings(QString::fromStdString(config + "/HushGremlin/HushGremlin.conf"),
                       QSettings::IniFormat);
    settings.setValue("muteMicrophoneInOtherApps", true);
    settings.sync();
    const std::vector<std::string> start{"env", "XDG_CONFIG_HOME=" + config, "QT_QPA_PLATFORM=xcb",
                                         programPath};
    const std::string log = DesktopSession::shared()->scratchDir() + "/measured-program.log";
    auto program = std::make_unique<ChildProcess>(start, log);
    program->waitForLine("GOT AX");
    program->waitForLine("GOT AX");
    auto events = std::make_unique<EventLog>();
    std::this_thread::sleep_for(300ms);

    std::vector<double> joins;
    // How long a moved call was seen live, when it was.
    std::vector<double> moveWindows;
    std::vector<double> ends;
    // Starts a call and times its mute; false when it was never muted.
    const auto join = [&](std::unique_ptr<ChildProcess>& call) {
        // A mute left from the last try (an input muted ahead of a call that
        // did not come) would pass for this join: it is lifted first.
        whenMute(Audio::source, "no", 6s);
        const auto before = Clock::now();
        call = Audio::record();
        const auto muted = whenMute(Audio::source, "yes", 5s);
        const auto appeared = events->find("'new' on source-output", before);
        if (muted && appeared) {
            joins.push_back(ms(*muted - *appeared));
        }
        return muted.has_value();
    };
    // Ends a call; true when the input is live again within 6 s. `timed`:
    // the end latency is counted (the call stayed on `input`).
    const auto end = [&](std::unique_ptr<ChildProcess>& call, const char* input, bool timed) {
        const auto before = Clock::now();
        call.reset();
        const auto live = whenMute(input, "no", 6s);
        const auto removed = events->find("'remove' on source-output", before);
        if (timed && live && removed) {
            ends.push_back(ms(*live - *removed));
        }
        return live.has_value();
    };

    Count reopen;
    Count defaultChange;
    Count restart;
    Count serverRestart;
    for (int i = 0; i < tries; ++i) {
        std::unique_ptr<ChildProcess> call;
        ++reopen.tries;
        if (join(call)) {
            call.reset();
            std::this_thread::sleep_for(500ms);
            call = Audio::record();
            reopen.live += staysMuted(Audio::source, 2500ms) ? 0 : 1;
            reopen.stuck += end(call, Audio::source, true) ? 0 : 1;
        }

        ++defaultChange.tries;
        if (join(call)) {
            Audio::setDefaultSource(headset);
            const auto live = longestLive(2500ms);
            defaultChange.live += live > Clock::duration::zero() ? 1 : 0;
            if (live > Clock::duration::zero()) {
                moveWindows.push_back(ms(live));
            }
            const bool oldLive = end(call, Audio::source, false);
            defaultChange.stuck += oldLive && whenMute(headset, "no", 6s) ? 0 : 1;
            Audio::setDefaultSource(Audio::source);
            std::this_thread::sleep_for(300ms);
        }

        ++restart.tries;
        if (join(call)) {
            program->signal(SIGTERM);
            program->waitForExit(5s);
            program.reset();
            bool live = !staysMuted(Audio::source, 1000ms);
            program = std::make_unique<ChildProcess>(start, log);
            program->waitForLine("Starting watcher");
            live = live || !staysMuted(Audio::source, 1500ms);
            restart.live += live ? 1 : 0;
            restart.stuck += end(call, Audio::source, false) ? 0 : 1;
        }
    }
    summary("join: stream appeared -> input muted", joins);
    summary("end: stream removed -> input live (grace 1500 ms included), after a reopened stream",
            ends);
    reopen.say("stream reopened after 0.5 s while muted");
    defaultChange.say("default input changed mid-call");
    summary("  of which seen live for (from one sample on; a sample takes a few ms)", moveWindows);
    restart.say("SIGTERM mid-call, then a new start");

    // Last, as it ends the event log's server.
    for (int i = 0; i < tries; ++i) {
        std::unique_ptr<ChildProcess> call;
        ++serverRestart.tries;
        call = Audio::record();
        if (!whenMute(Audio::source, "yes", 5s)) {
            continue;
        }
        if (!server->restartPulseServer(whyNot)) {
            std::cerr << whyNot << "\n";
            break;
        }
        // The virtual source went with the server: muted again, as a real
        // device's mute outlives it.
        Audio::setSourceMute(true);
        call.reset();
        serverRestart.stuck += whenMute(Audio::source, "no", 12s) ? 0 : 1;
    }
    serverRestart.say("audio server restarted mid-call (made live: the call ends with it)");
    program->signal(SIGTERM);
    program->waitForExit(5s);
    return 0;
}

} // namespace
} // namespace hg::test

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: microphone_mute_measure PROGRAM [TRIES]\n";
        return 2;
    }
    return hg::test::measure(argv[1], argc > 2 ? std::max(1, std::atoi(argv[2])) : 10);
}
