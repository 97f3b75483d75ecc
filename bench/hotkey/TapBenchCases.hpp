#pragma once

// The tap callback's cases, measured over whichever user-defaults store the
// benchmark hands in: the stored shortcut is read and decoded on every press
// and release, so the store is part of the cost.
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/Hotkey.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeEventTap.hpp"

#include <benchmark/benchmark.h>

namespace hg::bench {

inline constexpr std::uint64_t command = 0x100000;
inline constexpr std::int64_t keyK = 40;
inline constexpr std::int64_t keyA = 0;

struct TapRig {
    FakeEventTap tap;
    BufferLineSink out;
    GlobalHotkeyMonitor monitor;
    std::int64_t downs = 0;

    TapRig(UserDefaults& defaults, const Hotkey& stored) : monitor(tap, defaults, out) {
        stored.save(defaults);
        monitor.onDown = [this] { ++downs; };
    }
};

// A letter typed while command-K is stored: one read and decode, no match.
inline void nonShortcutKeyDown(benchmark::State& state, UserDefaults& defaults) {
    TapRig rig(defaults, Hotkey{keyK, command});
    const TapEvent event{tapevent::keyDown, keyA, 0, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(event));
    }
    state.SetItemsProcessed(state.iterations());
}

// Press and release of command-K; each event is half an iteration.
inline void shortcutPressAndRelease(benchmark::State& state, UserDefaults& defaults) {
    TapRig rig(defaults, Hotkey{keyK, command});
    const TapEvent press{tapevent::keyDown, keyK, command, 0};
    const TapEvent release{tapevent::keyUp, keyK, command, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(press));
        benchmark::DoNotOptimize(rig.monitor.handleTapEvent(release));
    }
    state.SetItemsProcessed(2 * state.iterations());
}

} // namespace hg::bench
