// The tap callback runs for every keystroke of the session, and a slow one
// makes the system disable the tap. Each measured event includes the stored
// shortcut's read from the in-memory defaults and its JSON decode.
#include "TapBenchCases.hpp"
#include "backends/fake/FakeUserDefaults.hpp"

namespace {

using hg::Hotkey;
using hg::TapEvent;
using namespace hg::bench;
namespace tapevent = hg::tapevent;

void BM_NonShortcutKeyDown(benchmark::State& state) {
    hg::FakeUserDefaults defaults;
    nonShortcutKeyDown(state, defaults);
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

void BM_ShortcutPressAndRelease(benchmark::State& state) {
    hg::FakeUserDefaults defaults;
    shortcutPressAndRelease(state, defaults);
}
BENCHMARK(BM_ShortcutPressAndRelease);

// Auto-repeat and caps lock leave before the stored shortcut is read.
void BM_AutoRepeat(benchmark::State& state) {
    hg::FakeUserDefaults defaults;
    TapRig rig(defaults, Hotkey{keyK, command});
    const TapEvent event{tapevent::keyDown, keyK, command, 1};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(event));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_AutoRepeat);

void BM_HotkeyLoad(benchmark::State& state) {
    hg::FakeUserDefaults defaults;
    Hotkey{keyK, command}.save(defaults);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Hotkey::load(defaults));
    }
}
BENCHMARK(BM_HotkeyLoad);

} // namespace
