// What the system microphone costs the watcher's tick: the reading it makes
// (the default input, whether it records, whether it is muted) while nothing changes, which should
// not wait for the server at all, and the same reading after the mute changed, which reads the
// default source and its streams again. On a private PipeWire with one
// recording client.

#include "PipeWireSession.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/linux/PulseMicrophone.hpp"

#include <benchmark/benchmark.h>

namespace hg {
namespace {

// One desktop, server, call and backend for the whole run. Deliberately never
// destroyed: the children die with this process.
struct Rig {
    BufferLineSink out;
    PulseMicrophone mic{out};
    std::unique_ptr<test::PipeWireSession> server;
    std::unique_ptr<test::ChildProcess> call;
};

Rig* rig(std::string& failure) {
    static Rig* made = nullptr;
    static std::string why;
    if (made == nullptr && why.empty()) {
        if (test::DesktopSession::shared() == nullptr) {
            why = test::DesktopSession::skipReason();
        } else {
            test::makeQtApplication();
            auto* candidate = new Rig();
            candidate->server = test::PipeWireSession::start(why);
            if (candidate->server != nullptr) {
                candidate->call = test::PipeWireSession::record();
                if (test::waitUntil([candidate] {
                        return candidate->mic.isRecording(test::PipeWireSession::source) == true;
                    })) {
                    made = candidate;
                } else {
                    why = "the recording client was never seen";
                }
            }
        }
    }
    failure = why;
    return made;
}

void idleReading(benchmark::State& state) {
    std::string why;
    Rig* r = rig(why);
    if (r == nullptr) {
        state.SkipWithError(why.c_str());
        return;
    }
    for (auto _ : state) {
        const std::string input = r->mic.defaultInput();
        benchmark::DoNotOptimize(r->mic.isRecording(input));
        benchmark::DoNotOptimize(r->mic.isMuted(input));
    }
}
BENCHMARK(idleReading);

void readingAfterAMute(benchmark::State& state) {
    std::string why;
    Rig* r = rig(why);
    if (r == nullptr) {
        state.SkipWithError(why.c_str());
        return;
    }
    bool muted = false;
    for (auto _ : state) {
        muted = !muted;
        r->mic.setMuted(test::PipeWireSession::source, muted);
        const std::string input = r->mic.defaultInput();
        benchmark::DoNotOptimize(r->mic.isRecording(input));
        benchmark::DoNotOptimize(r->mic.isMuted(input));
    }
}
BENCHMARK(readingAfterAMute)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace hg
