// Runs simulator scripts of several virtual hours with the output discarded:
// every second a watcher tick reads Zoom's menu bar and runs Tuple's tool.
// Reported per run, with the virtual seconds covered per real second.
#include "shells/sim/SimInterpreter.hpp"

#include <benchmark/benchmark.h>
#include <sstream>
#include <string>
#include <vector>

namespace hg::sim {
namespace {

// Both apps busy the whole time: the costliest ticks the program makes.
std::vector<std::string> script(int hours) {
    std::vector<std::string> lines = {"trust on",    "zoom start",       "zoom meeting muted",
                                      "tuple start", "tuple call muted", "launch"};
    for (int hour = 0; hour < hours; ++hour) {
        lines.emplace_back(hour % 2 == 0 ? "zoom meeting unmuted" : "zoom meeting muted");
        lines.emplace_back("flags 63 0x800000");
        lines.emplace_back("wait 0.5");
        lines.emplace_back("flags 63 0");
        lines.emplace_back("wait 3599.5");
    }
    return lines;
}

void BM_SimulatedHours(benchmark::State& state) {
    const auto lines = script(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::ostringstream sink;
        SimOutput out(sink, true);
        SimInterpreter interpreter(out);
        for (const auto& line : lines) {
            interpreter.runLine(line);
        }
        benchmark::DoNotOptimize(sink.tellp());
    }
    state.counters["virtual_s_per_s"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * 3600 * static_cast<double>(state.iterations()),
        benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SimulatedHours)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

// The same four hours with nothing running: the floor a tick costs.
void BM_IdleHours(benchmark::State& state) {
    for (auto _ : state) {
        std::ostringstream sink;
        SimOutput out(sink, false);
        SimInterpreter interpreter(out);
        interpreter.runLine("launch");
        interpreter.runLine("wait 14400");
        benchmark::DoNotOptimize(sink.tellp());
    }
}
BENCHMARK(BM_IdleHours)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace hg::sim
