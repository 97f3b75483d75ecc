#include "platform/qt/DesktopPlatform.hpp"

#include "platform/StdoutLineSink.hpp"
#include "platform/fake/FakeAccessibility.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeLoginItems.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/posix/PosixFileSystem.hpp"
#include "platform/posix/PosixProcessRunner.hpp"
#include "platform/qt/AppcastUpdater.hpp"
#include "platform/qt/BriefRunningApplicationsCache.hpp"
#include "platform/qt/MessageBoxUpdateAnswers.hpp"
#include "platform/qt/QtApplication.hpp"
#include "platform/qt/QtLocalKeyMonitor.hpp"
#include "platform/qt/QtTimers.hpp"
#include "platform/qt/QtUnifiedLog.hpp"
#include "platform/qt/QtUserDefaults.hpp"
#include "platform/qt/QtWindows.hpp"
#include "platform/qt/SystemClock.hpp"
#include "platform/qt/TrayStatusItem.hpp"

#include <QCoreApplication>
#include <QKeyEvent>

#if defined(__linux__)
#include "platform/linux/AtspiAccessibility.hpp"
#include "platform/linux/KeyCodeTable.hpp"
#include "platform/linux/ProcRunningApplications.hpp"
#include "platform/linux/X11EventTap.hpp"
#include "platform/linux/XdgLoginItems.hpp"
#include "platform/linux/XkbKeyboardLayout.hpp"
#endif

namespace hg {

namespace {

// The macOS virtual key code of a key event from its native key code: the
// X11 (and Wayland) key code is evdev + 8; macOS hands its own code over.
std::optional<std::uint16_t> nativeMacKeyCode(const QKeyEvent& event) {
#if defined(__linux__)
    if (event.nativeScanCode() == 0) {
        return std::nullopt; // synthesized: Qt's key is all there is
    }
    return KeyCodeTable::macKeyCode(event.nativeScanCode());
#elif defined(__APPLE__)
    if (event.nativeVirtualKey() == 0 && event.key() != Qt::Key_A) {
        return std::nullopt; // synthesized (0 is also the A key)
    }
    return static_cast<std::uint16_t>(event.nativeVirtualKey());
#else
    static_cast<void>(event);
    return std::nullopt;
#endif
}

} // namespace

struct DesktopPlatform::Backends {
    Backends() : statusItem(out), windows(defaults.settings(), application) {
#if !defined(__linux__)
        eventTap.installable = false;
#endif
    }

    StdoutLineSink out;
    SystemClock clock;
    QtTimers timers;
    QtUserDefaults defaults;
    TrayStatusItem statusItem;
    QtApplication application;
    QtWindows windows;
#if defined(__linux__)
    AtspiAccessibility accessibility;
    ProcRunningApplications runningApplications{ProcRunningApplications::Options{
        .registeredProcesses = [this] { return accessibility.registeredProcessIds(); }}};
#else
    FakeAccessibility accessibility; // untrusted: no backend yet
    FakeRunningApplications runningApplications;
#endif
    BriefRunningApplicationsCache recentApplications{runningApplications, clock,
                                                     std::chrono::milliseconds(100)};
    PosixFileSystem fileSystem;
    PosixProcessRunner processRunner;
#if defined(__linux__)
    X11EventTap eventTap{defaults, out};
    XkbKeyboardLayout keyboardLayout;
#else
    FakeEventTap eventTap; // not installable: no backend yet
    FakeKeyboardLayout keyboardLayout;
#endif
    QtLocalKeyMonitor localKeyMonitor{nativeMacKeyCode};
#if defined(__linux__)
    XdgLoginItems loginItems{QCoreApplication::applicationFilePath().toStdString()};
#else
    FakeLoginItems loginItems;
#endif
    QtUnifiedLog unifiedLog;
    MessageBoxUpdateAnswers updateAnswers;
    AppcastUpdater updater{
        AppcastUpdater::Options{.feedUrl = HG_UPDATE_FEED_URL, .currentVersion = HG_VERSION},
        updateAnswers, out};
};

DesktopPlatform::DesktopPlatform() : backends_(std::make_unique<Backends>()) {
    Backends& b = *backends_;
    platform_ = std::make_unique<Platform>(
        Platform{b.clock, b.timers, b.out, b.defaults, b.statusItem, b.windows, b.application,
                 b.accessibility, b.recentApplications, b.fileSystem, b.processRunner, b.eventTap,
                 b.keyboardLayout, b.localKeyMonitor, b.loginItems, b.unifiedLog, b.updater});
}

DesktopPlatform::~DesktopPlatform() = default;

Platform& DesktopPlatform::platform() {
    return *platform_;
}

TrayStatusItem& DesktopPlatform::tray() {
    return backends_->statusItem;
}

QtUserDefaults& DesktopPlatform::defaults() {
    return backends_->defaults;
}

} // namespace hg
