// The cost of reading and toggling Zoom's mute through AT-SPI, against the
// fixture application on a private desktop: wall time and D-Bus round trips
// for one fetchStatus (the watcher's tick) and one toggle of a cached item.

#include "DesktopSession.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/ProcRunningApplications.hpp"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <memory>

namespace hg::test {
namespace {

class NullSink final : public LineSink {
public:
    void line(std::string_view) override {}
};

// One desktop, one fixture application in a meeting, for all benchmarks.
struct Desktop {
    std::unique_ptr<QCoreApplication> app;
    std::unique_ptr<AtspiAccessibility> ax;
    std::unique_ptr<FixtureApp> fixture;
    std::unique_ptr<ProcRunningApplications> apps;
    NullSink out;
    std::string whyNot;

    Desktop() {
        if (DesktopSession::shared() == nullptr) {
            whyNot = DesktopSession::skipReason();
            return;
        }
        static int argc = 1;
        static char name[] = "linux_atspi_bench";
        static char* argv[] = {name, nullptr};
        app = std::make_unique<QCoreApplication>(argc, argv);
        ax = std::make_unique<AtspiAccessibility>(AtspiAccessibility::Options{.alwaysOn = true});
        fixture = FixtureApp::start(*ax, whyNot);
        if (!fixture) {
            return;
        }
        fixture->command("join");
        apps = std::make_unique<ProcRunningApplications>(ProcRunningApplications::Options{
            .identities = {AppIdentity{"us.zoom.xos", {fixture->processName()}, {}}}});
    }

    static Desktop& shared() {
        static Desktop desktop;
        return desktop;
    }
};

void reportRoundTrips(benchmark::State& state, std::uint64_t before, std::uint64_t after) {
    state.counters["round_trips"] =
        benchmark::Counter(static_cast<double>(after - before), benchmark::Counter::kAvgIterations);
}

void BM_FetchStatus(benchmark::State& state) {
    Desktop& desktop = Desktop::shared();
    if (!desktop.fixture) {
        state.SkipWithError(desktop.whyNot.c_str());
        return;
    }
    ZoomMeetingApp zoom(*desktop.ax, *desktop.apps, desktop.out);
    const auto before = desktop.ax->roundTrips();
    for (auto _ : state) {
        benchmark::DoNotOptimize(zoom.fetchStatus());
    }
    reportRoundTrips(state, before, desktop.ax->roundTrips());
}
BENCHMARK(BM_FetchStatus)->Unit(benchmark::kMillisecond);

void BM_CachedToggle(benchmark::State& state) {
    Desktop& desktop = Desktop::shared();
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
    const auto before = desktop.ax->roundTrips();
    for (auto _ : state) {
        benchmark::DoNotOptimize(zoom.toggleMute(MeetingStatus::onMute));
    }
    reportRoundTrips(state, before, desktop.ax->roundTrips());
}
BENCHMARK(BM_CachedToggle)->Unit(benchmark::kMillisecond);

void BM_TrustTest(benchmark::State& state) {
    Desktop& desktop = Desktop::shared();
    if (!desktop.fixture) {
        state.SkipWithError(desktop.whyNot.c_str());
        return;
    }
    // The watcher's once-a-second question, with the desktop switch consulted.
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = false});
    ax.isProcessTrusted(false); // opens the connection
    const auto before = ax.roundTrips();
    for (auto _ : state) {
        benchmark::DoNotOptimize(ax.isProcessTrusted(false));
    }
    reportRoundTrips(state, before, ax.roundTrips());
}
BENCHMARK(BM_TrustTest)->Unit(benchmark::kMicrosecond);

void BM_RunningApplications(benchmark::State& state) {
    // Every process of the machine is looked at: this is the cost of one
    // runningAppPID on a desktop with this many processes.
    ProcRunningApplications apps;
    for (auto _ : state) {
        benchmark::DoNotOptimize(apps.runningApplications());
    }
}
BENCHMARK(BM_RunningApplications)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace hg::test
