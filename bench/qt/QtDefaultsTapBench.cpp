// The tap callback runs for every keystroke of the session and reads the
// stored shortcut each time. Here the store is the desktop program's own:
// QSettings over an INI file, looked at again on every read (a stat while the
// file is unchanged).
#include "../hotkey/TapBenchCases.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "shells/qt/QtUserDefaults.hpp"

#include <QTemporaryDir>

namespace {

using hg::Hotkey;
using hg::TapEvent;
using namespace hg::bench;
namespace tapevent = hg::tapevent;

struct QtStore {
    QTemporaryDir dir;
    hg::BufferLineSink out;
    hg::QtUserDefaults defaults{dir.filePath(QStringLiteral("bench.ini")), out};
};

void BM_QtStoreNonShortcutKeyDown(benchmark::State& state) {
    QtStore store;
    nonShortcutKeyDown(state, store.defaults);
}
BENCHMARK(BM_QtStoreNonShortcutKeyDown);

void BM_QtStoreShortcutPressAndRelease(benchmark::State& state) {
    QtStore store;
    shortcutPressAndRelease(state, store.defaults);
}
BENCHMARK(BM_QtStoreShortcutPressAndRelease);

// A modifier change with fn alone stored: the default shortcut's path.
void BM_QtStoreDefaultShortcutFlagsChanged(benchmark::State& state) {
    QtStore store;
    TapRig rig(store.defaults, Hotkey::defaultHotkey());
    const TapEvent shift{tapevent::flagsChanged, 56, 0x20000, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(shift));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QtStoreDefaultShortcutFlagsChanged);

// A valid shortcut with a 10 MB member beside it: too long to be a shortcut,
// so the key path reads fn alone without copying or parsing the value.
void BM_QtStoreOversizedValueKeyDown(benchmark::State& state) {
    QtStore store;
    const std::string json =
        R"({"keyCode":40,"modifiers":1048576,"x":")" + std::string(10u << 20, 'x') + "\"}";
    store.defaults.setData(Hotkey::defaultsKey, hg::Bytes(json.begin(), json.end()));
    hg::FakeEventTap tap;
    hg::BufferLineSink out;
    hg::GlobalHotkeyMonitor monitor(tap, store.defaults, out);
    const TapEvent a{tapevent::keyDown, keyA, 0, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(monitor.handleTapEvent(a));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QtStoreOversizedValueKeyDown);

} // namespace
