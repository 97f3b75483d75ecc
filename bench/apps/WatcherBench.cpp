// One watcher tick with the real adapters on fake platforms: Zoom's menu bar
// as a scripted accessibility tree, Tuple's tool as a scripted child process.
#include "apps/TupleMeetingApp.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "core/UserData.hpp"
#include "core/Watcher.hpp"
#include "menu/GremlinMenu.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeFileSystem.hpp"
#include "backends/fake/FakeProcessRunner.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "backends/fake/FakeTimers.hpp"
#include "backends/fake/FakeUserDefaults.hpp"

#include <benchmark/benchmark.h>

namespace hg {
namespace {

class NullLineSink final : public LineSink {
public:
    void line(std::string_view text) override { benchmark::DoNotOptimize(text.data()); }
};

struct Desktop {
    FakeClock clock;
    FakeTimers timers{clock};
    FakeStatusItem item;
    GremlinMenu menu{item, {}};
    NullLineSink out;
    UserData data{menu, clock, out};
    FakeUserDefaults defaults;
    FakeAccessibility ax;
    FakeRunningApplications apps;
    FakeFileSystem files;
    FakeProcessRunner runner{[](const std::string&, const std::vector<std::string>&) {
        return ProcessResult{std::nullopt, 0, R"({"in_call":false})", ""};
    }};
    std::shared_ptr<FakeAXElement> application = FakeAXElement::make("AXApplication", "zoom.us");

    explicit Desktop(bool zoomInMeeting) {
        application->menuBar = FakeAXElement::make("AXMenuBar", std::nullopt);
        const char* menus[] = {"Apple", "zoom.us", "Meeting", "Window"};
        for (const char* title : menus) {
            if (std::string_view(title) == "Meeting" && !zoomInMeeting) {
                continue;
            }
            auto axMenu = application->menuBar->add("AXMenuBarItem", title)->add("AXMenu", title);
            axMenu->add("AXMenuItem", std::string(title) + " item");
            if (std::string_view(title) == "Meeting") {
                axMenu->add("AXMenuItem", "Mute Audio");
                axMenu->add("AXMenuItem", "Start Video");
            }
        }
        ax.setTrusted(true);
        ax.setApplication(1, application);
        apps.add("us.zoom.xos", 1);
        apps.add("app.tuple.app", 2);
        files.add("/usr/local/bin/tuple");
    }
};

void runTicks(benchmark::State& state, bool zoomInMeeting) {
    Desktop d(zoomInMeeting);
    std::vector<std::shared_ptr<MeetingApp>> meetingApps{
        std::make_shared<ZoomMeetingApp>(d.ax, d.apps, d.out),
        std::make_shared<TupleMeetingApp>("/usr/local/bin/tuple", d.apps, d.files, d.runner,
                                          d.out)};
    Watcher watcher(d.data, meetingApps, {}, {}, d.ax, d.defaults, d.timers, d.out);
    for (auto _ : state) {
        d.clock.advanceSeconds(1);
        watcher.poll();
        // The fakes record every call; keep them from growing without bound.
        d.ax.clearCalls();
        d.runner.clearRuns();
    }
}

// Zoom stays active in its meeting: one status read per tick.
void BM_WatcherTick_ZoomInMeeting(benchmark::State& state) {
    runTicks(state, true);
}
// Nobody in a meeting: Zoom's menu bar and Tuple's tool are both asked.
void BM_WatcherTick_NoMeeting(benchmark::State& state) {
    runTicks(state, false);
}

BENCHMARK(BM_WatcherTick_ZoomInMeeting);
BENCHMARK(BM_WatcherTick_NoMeeting);

} // namespace
} // namespace hg
