// The tap callback runs for every keystroke of the session and reads the
// stored shortcut each time. Here the store is the desktop program's own:
// QSettings over an INI file, read from its in-memory cache.
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/Hotkey.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/qt/QtUserDefaults.hpp"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

using hg::Hotkey;
using hg::TapEvent;
namespace tapevent = hg::tapevent;

constexpr std::uint64_t command = 0x100000;
constexpr std::int64_t keyK = 40;
constexpr std::int64_t keyA = 0;

struct Rig {
    QTemporaryDir dir;
    hg::QtUserDefaults defaults{dir.filePath(QStringLiteral("bench.ini"))};
    hg::FakeEventTap tap;
    hg::BufferLineSink out;
    hg::GlobalHotkeyMonitor monitor{tap, defaults, out};
    std::int64_t downs = 0;

    explicit Rig(const Hotkey& stored) {
        stored.save(defaults);
        monitor.onDown = [this] { ++downs; };
    }
};

// A letter typed while command-K is stored: one read and decode, no match.
void BM_QtStoreNonShortcutKeyDown(benchmark::State& state) {
    Rig rig(Hotkey{keyK, command});
    const TapEvent event{tapevent::keyDown, keyA, 0, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(event));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QtStoreNonShortcutKeyDown);

// Press and release of command-K; each event is half an iteration.
void BM_QtStoreShortcutPressAndRelease(benchmark::State& state) {
    Rig rig(Hotkey{keyK, command});
    const TapEvent down{tapevent::keyDown, keyK, command, 0};
    const TapEvent up{tapevent::keyUp, keyK, command, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(down));
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(up));
    }
    state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(BM_QtStoreShortcutPressAndRelease);

// A modifier change with fn alone stored: the default shortcut's path.
void BM_QtStoreDefaultShortcutFlagsChanged(benchmark::State& state) {
    Rig rig(Hotkey::defaultHotkey());
    const TapEvent shift{tapevent::flagsChanged, 56, 0x20000, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(shift));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QtStoreDefaultShortcutFlagsChanged);

} // namespace
