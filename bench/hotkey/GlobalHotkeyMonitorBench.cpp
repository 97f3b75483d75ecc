// The tap callback runs for every keystroke of the session, and a slow one
// makes the system disable the tap. Each measured event includes the stored
// shortcut's read from the in-memory defaults and its JSON decode.
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <benchmark/benchmark.h>

namespace {

using hg::Hotkey;
using hg::TapEvent;
namespace tapevent = hg::tapevent;

constexpr std::uint64_t command = 0x100000;
constexpr std::int64_t keyK = 40;
constexpr std::int64_t keyA = 0;

struct Rig {
    hg::FakeUserDefaults defaults;
    hg::FakeEventTap tap;
    hg::BufferLineSink out;
    hg::GlobalHotkeyMonitor monitor{tap, defaults, out};
    std::int64_t downs = 0;

    explicit Rig(const Hotkey& stored) {
        stored.save(defaults);
        monitor.onDown = [this] { ++downs; };
    }
};

// A letter typed with command-K stored: one load, no match.
void BM_NonShortcutKeyDown(benchmark::State& state) {
    Rig rig(Hotkey{40, command});
    const TapEvent event{tapevent::keyDown, keyA, 0, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(event));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_NonShortcutKeyDown);

// The default shortcut with nothing stored: the read finds nothing to decode.
void BM_NonShortcutKeyDownEmptyStore(benchmark::State& state) {
    hg::FakeUserDefaults defaults;
    hg::FakeEventTap tap;
    hg::BufferLineSink out;
    hg::GlobalHotkeyMonitor monitor(tap, defaults, out);
    const TapEvent event{tapevent::keyDown, keyA, 0, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(monitor.handleTapEvent(event));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_NonShortcutKeyDownEmptyStore);

// Press and release of command-K; the time per event is half of one iteration.
void BM_ShortcutPressAndRelease(benchmark::State& state) {
    Rig rig(Hotkey{40, command});
    const TapEvent press{tapevent::keyDown, keyK, command, 0};
    const TapEvent release{tapevent::keyUp, keyK, command, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(press));
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(release));
    }
    state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(BM_ShortcutPressAndRelease);

// Auto-repeat and caps lock leave before the stored shortcut is read.
void BM_AutoRepeat(benchmark::State& state) {
    Rig rig(Hotkey{40, command});
    const TapEvent event{tapevent::keyDown, keyK, command, 1};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(event));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_AutoRepeat);

void BM_HotkeyLoad(benchmark::State& state) {
    hg::FakeUserDefaults defaults;
    Hotkey{40, command}.save(defaults);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Hotkey::load(defaults));
    }
}
BENCHMARK(BM_HotkeyLoad);

} // namespace
