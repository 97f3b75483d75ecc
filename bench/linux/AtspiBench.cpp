// The cost of reading and toggling Zoom's mute through AT-SPI, against the
// fixture applications (Qt 6, GTK 3, Qt 5) on a private desktop: wall time,
// D-Bus round trips and messages for one fetchStatus (the watcher's tick) and
// one toggle of a cached item.

#include "DesktopSession.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/ProcRunningApplications.hpp"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

namespace hg::test {
namespace {

class NullSink final : public LineSink {
public:
    void line(std::string_view) override {}
};

// One desktop and, for each toolkit, one fixture application in a meeting.
struct Desktop {
    std::unique_ptr<AtspiAccessibility> ax;
    std::unique_ptr<FixtureApp> fixture;
    std::unique_ptr<ProcRunningApplications> apps;
    NullSink out;
    std::string whyNot;

    explicit Desktop(Toolkit toolkit) {
        if (DesktopSession::shared() == nullptr) {
            whyNot = DesktopSession::skipReason();
            return;
        }
        static int argc = 1;
        static char name[] = "linux_atspi_bench";
        static char* argv[] = {name, nullptr};
        static const QCoreApplication app(argc, argv);
        ax = std::make_unique<AtspiAccessibility>(AtspiAccessibility::Options{.alwaysOn = true});
        fixture = FixtureApp::start(*ax, whyNot, toolkit);
        if (!fixture) {
            return;
        }
        fixture->command("join");
        apps = std::make_unique<ProcRunningApplications>(ProcRunningApplications::Options{
            .identities = {AppIdentity{"us.zoom.xos", {fixture->processName()}, {}}}});
    }

    // By the benchmark's argument: 0 Qt 6, 1 GTK 3, 2 Qt 5.
    static Desktop& shared(const benchmark::State& state) {
        static std::map<std::int64_t, std::unique_ptr<Desktop>> desktops;
        auto& desktop = desktops[state.range(0)];
        if (!desktop) {
            desktop = std::make_unique<Desktop>(static_cast<Toolkit>(state.range(0)));
        }
        return *desktop;
    }
};

std::size_t processCount() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const auto name = entry.path().filename().string();
        count += !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
    }
    return count;
}

struct BusCount {
    std::uint64_t roundTrips;
    std::uint64_t messages;
};

BusCount busCount(const AtspiAccessibility& ax) {
    return {ax.roundTrips(), ax.messages()};
}

void reportRoundTrips(benchmark::State& state, BusCount before, BusCount after) {
    state.counters["round_trips"] =
        benchmark::Counter(static_cast<double>(after.roundTrips - before.roundTrips),
                           benchmark::Counter::kAvgIterations);
    state.counters["messages"] = benchmark::Counter(
        static_cast<double>(after.messages - before.messages), benchmark::Counter::kAvgIterations);
}

void BM_FetchStatus(benchmark::State& state) {
    Desktop& desktop = Desktop::shared(state);
    if (!desktop.fixture) {
        state.SkipWithError(desktop.whyNot.c_str());
        return;
    }
    ZoomMeetingApp zoom(*desktop.ax, *desktop.apps, desktop.out);
    const auto before = busCount(*desktop.ax);
    for (auto _ : state) {
        benchmark::DoNotOptimize(zoom.fetchStatus());
    }
    reportRoundTrips(state, before, busCount(*desktop.ax));
}
BENCHMARK(BM_FetchStatus)->Unit(benchmark::kMillisecond)->ArgName("toolkit")->DenseRange(0, 2);

// The first reading of an application: nothing of it is known yet.
void BM_FirstFetchStatus(benchmark::State& state) {
    Desktop& desktop = Desktop::shared(state);
    if (!desktop.fixture) {
        state.SkipWithError(desktop.whyNot.c_str());
        return;
    }
    BusCount spent{0, 0};
    for (auto _ : state) {
        state.PauseTiming();
        AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
        ax.isProcessTrusted(false); // opens the connection
        ZoomMeetingApp zoom(ax, *desktop.apps, desktop.out);
        const BusCount before = busCount(ax);
        state.ResumeTiming();
        benchmark::DoNotOptimize(zoom.fetchStatus());
        spent.roundTrips += ax.roundTrips() - before.roundTrips;
        spent.messages += ax.messages() - before.messages;
    }
    reportRoundTrips(state, {0, 0}, spent);
}
BENCHMARK(BM_FirstFetchStatus)
    ->Unit(benchmark::kMillisecond)
    ->ArgName("toolkit")
    ->DenseRange(0, 2)
    ->Iterations(50);

void BM_CachedToggle(benchmark::State& state) {
    Desktop& desktop = Desktop::shared(state);
    if (!desktop.fixture) {
        state.SkipWithError(desktop.whyNot.c_str());
        return;
    }
    ZoomMeetingApp zoom(*desktop.ax, *desktop.apps, desktop.out);
    // The first toggle looks the item up; the ones measured press it again.
    if (zoom.toggleMute(MeetingStatus::offMute) != MeetingStatus::offMute) {
        state.SkipWithError("the fixture's mute item could not be pressed");
        return;
    }
    const auto before = busCount(*desktop.ax);
    for (auto _ : state) {
        benchmark::DoNotOptimize(zoom.toggleMute(MeetingStatus::onMute));
    }
    reportRoundTrips(state, before, busCount(*desktop.ax));
}
// A bounded count: the fixtures report every press on a pipe nobody reads here.
BENCHMARK(BM_CachedToggle)
    ->Unit(benchmark::kMillisecond)
    ->ArgName("toolkit")
    ->DenseRange(0, 2)
    ->Iterations(500);

void BM_TrustTest(benchmark::State& state) {
    Desktop& desktop = Desktop::shared(state);
    if (!desktop.fixture) {
        state.SkipWithError(desktop.whyNot.c_str());
        return;
    }
    // The watcher's once-a-second question, with the desktop switch consulted.
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = false});
    ax.isProcessTrusted(false); // opens the connection
    const auto before = busCount(ax);
    for (auto _ : state) {
        benchmark::DoNotOptimize(ax.isProcessTrusted(false));
    }
    reportRoundTrips(state, before, busCount(ax));
}
BENCHMARK(BM_TrustTest)->Unit(benchmark::kMicrosecond)->Arg(0);

void BM_RunningApplications(benchmark::State& state) {
    // Every process of the machine is looked at: the cost of one watcher
    // tick's listing, names of known processes remembered (argument 1) or
    // all read afresh as on the first listing (argument 0).
    std::optional<ProcRunningApplications> apps;
    apps.emplace(ProcRunningApplications::Options{.rescanAfter = {}});
    for (auto _ : state) {
        if (state.range(0) == 0) {
            state.PauseTiming();
            apps.emplace(ProcRunningApplications::Options{.rescanAfter = {}});
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(apps->runningApplications());
    }
    state.counters["processes"] = static_cast<double>(processCount());
}
BENCHMARK(BM_RunningApplications)
    ->Unit(benchmark::kMicrosecond)
    ->ArgName("remembered")
    ->Arg(0)
    ->Arg(1);

} // namespace
} // namespace hg::test
