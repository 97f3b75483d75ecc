// Latency of the X11 shortcut tap: from an XTEST key press sent to the X
// server to the monitor's onDown, through the passive grab, Qt's xcb event
// queue, the key translation, the monitor's rules (stored-shortcut read
// included) and the consumed press's answer to the server. Runs on a private
// Xvfb; XTEST comes from a second connection, as xdotool's would.

#include "DesktopSession.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "backends/linux/X11EventTap.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/StoredHotkey.hpp"
#include "ports/ModifierKeys.hpp"

#include <QGuiApplication>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace hg {
namespace {

constexpr std::uint8_t superL = 133, controlL = 37, altL = 64, keyK = 45;

// One X server, application and tap for the whole run. Deliberately never
// destroyed: Qt must not be torn down during static destruction, and the
// server dies with this process.
struct Rig {
    xcb_connection_t* xtest = nullptr;
    xcb_window_t root = 0;
    FakeUserDefaults defaults;
    StoredHotkey shortcut{defaults};
    BufferLineSink out;
    X11EventTap* tap = nullptr;
    GlobalHotkeyMonitor* monitor = nullptr;
    int downs = 0;
    int ups = 0;

    void send(std::uint8_t type, std::uint8_t key) const {
        xcb_test_fake_input(xtest, type, key, XCB_CURRENT_TIME, root, 0, 0, 0);
        xcb_flush(xtest);
    }
    static void spinUntil(const int& counter, int value) {
        while (counter < value) {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        }
    }
};

Rig* rig(std::string& failure) {
    static Rig* made = nullptr;
    static std::string why;
    if (made != nullptr || !why.empty()) {
        failure = why;
        return made;
    }
    // The private display; DISPLAY points at it from here on.
    if (test::DesktopSession::shared() == nullptr) {
        why = test::DesktopSession::skipReason();
        failure = why;
        return nullptr;
    }
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    static int argc = 1;
    static char name[] = "linux_x11_tap_bench";
    static char* argv[] = {name, nullptr};
    new QGuiApplication(argc, argv);

    made = new Rig();
    made->xtest = xcb_connect(nullptr, nullptr);
    made->root = xcb_setup_roots_iterator(xcb_get_setup(made->xtest)).data->root;
    made->tap = new X11EventTap(made->shortcut, made->out);
    made->monitor = new GlobalHotkeyMonitor(*made->tap, made->defaults, made->out);
    made->monitor->onDown = [] { ++made->downs; };
    made->monitor->onUp = [] { ++made->ups; };
    return made;
}

void pressToOnDown(benchmark::State& state, Hotkey shortcut, std::uint8_t held,
                   std::uint8_t pressed) {
    std::string failure;
    Rig* r = rig(failure);
    if (r == nullptr) {
        state.SkipWithError(failure.c_str());
        return;
    }
    shortcut.save(r->defaults);
    r->monitor->start();
    r->tap->refresh();
    r->send(XCB_KEY_PRESS, held);
    for (auto _ : state) {
        const int downs = r->downs;
        const int ups = r->ups;
        const auto sent = std::chrono::steady_clock::now();
        r->send(XCB_KEY_PRESS, pressed);
        Rig::spinUntil(r->downs, downs + 1);
        const auto seen = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(seen - sent).count());
        r->send(XCB_KEY_RELEASE, pressed);
        Rig::spinUntil(r->ups, ups + 1);
    }
    r->send(XCB_KEY_RELEASE, held);
    r->monitor->stop();
}

void BM_X11Tap_CommandK_PressToOnDown(benchmark::State& state) {
    pressToOnDown(state, Hotkey{40, modifier::command}, superL, keyK);
}
BENCHMARK(BM_X11Tap_CommandK_PressToOnDown)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_X11Tap_ControlOption_PressToOnDown(benchmark::State& state) {
    pressToOnDown(state, Hotkey{Hotkey::noKey, modifier::control | modifier::option}, controlL,
                  altL);
}
BENCHMARK(BM_X11Tap_ControlOption_PressToOnDown)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace hg
