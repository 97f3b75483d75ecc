// Running the Tuple tool's state command through PosixProcessRunner, against
// a bare posix_spawn + waitpid of the same script. The difference is what
// the pipes, the poll loop and the time-out watch cost on top of starting a
// process; the goal is a ratio of at most 1.10.
#include "backends/posix/PosixProcessRunner.hpp"

#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace hg {
namespace {

const std::string script = HG_APPS_FIXTURE_DIR "/state-muted.sh";

void BM_PosixProcessRunner(benchmark::State& state) {
    PosixProcessRunner runner;
    for (auto _ : state) {
        const ProcessResult result =
            runner.run(script, {"state", "--format", "json"}, PosixProcessRunner::defaultTimeout);
        if (result.exitStatus != 0 || result.standardOutput.empty()) {
            state.SkipWithError("the fixture did not run");
            break;
        }
        benchmark::DoNotOptimize(result.standardOutput.data());
    }
}

// Output goes to /dev/null, opened once: only the spawn and the wait count.
class BareSpawn {
public:
    BareSpawn() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_adddup2(&actions_, devNull_, STDOUT_FILENO);
    }
    ~BareSpawn() {
        posix_spawn_file_actions_destroy(&actions_);
        ::close(devNull_);
    }
    BareSpawn(const BareSpawn&) = delete;
    BareSpawn& operator=(const BareSpawn&) = delete;

    bool run() {
        pid_t pid = -1;
        if (::posix_spawn(&pid, script.c_str(), &actions_, nullptr, argv_.data(), environ) != 0) {
            return false;
        }
        int status = 0;
        ::waitpid(pid, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    int devNull_ = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    posix_spawn_file_actions_t actions_{};
    std::string a0_ = script, a1_ = "state", a2_ = "--format", a3_ = "json";
    std::array<char*, 5> argv_{a0_.data(), a1_.data(), a2_.data(), a3_.data(), nullptr};
};

void BM_BareSpawnAndWait(benchmark::State& state) {
    BareSpawn bare;
    for (auto _ : state) {
        if (!bare.run()) {
            state.SkipWithError("the fixture did not run");
            break;
        }
    }
}

// Both in alternation, so that a machine whose load changes during the run
// (other builds on a shared host) weighs on both alike. Reports the mean of
// each and their ratio.
void BM_RunnerOverBareRatio(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    PosixProcessRunner runner;
    BareSpawn bare;
    Clock::duration runnerTime{};
    Clock::duration bareTime{};
    for (auto _ : state) {
        const auto t0 = Clock::now();
        const bool bareOk = bare.run();
        const auto t1 = Clock::now();
        const ProcessResult result =
            runner.run(script, {"state", "--format", "json"}, PosixProcessRunner::defaultTimeout);
        const auto t2 = Clock::now();
        if (!bareOk || result.exitStatus != 0) {
            state.SkipWithError("the fixture did not run");
            break;
        }
        bareTime += t1 - t0;
        runnerTime += t2 - t1;
    }
    const auto us = [&state](Clock::duration d) {
        return std::chrono::duration<double, std::micro>(d).count() /
               static_cast<double>(state.iterations());
    };
    state.counters["runner_us"] = us(runnerTime);
    state.counters["bare_us"] = us(bareTime);
    state.counters["ratio"] = us(runnerTime) / us(bareTime);
}

BENCHMARK(BM_PosixProcessRunner)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_BareSpawnAndWait)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_RunnerOverBareRatio)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(3.0);

} // namespace
} // namespace hg
