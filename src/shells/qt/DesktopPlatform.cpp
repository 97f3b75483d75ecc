#include "shells/qt/DesktopPlatform.hpp"

#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/KeyCodeTable.hpp"
#include "backends/linux/ProcRunningApplications.hpp"
#include "backends/linux/X11EventTap.hpp"
#include "backends/linux/XdgLoginItems.hpp"
#include "backends/linux/XkbKeyboardLayout.hpp"
#include "backends/posix/PosixFileSystem.hpp"
#include "backends/posix/PosixProcessRunner.hpp"
#include "backends/posix/StdoutLineSink.hpp"
#include "shells/qt/AppcastUpdater.hpp"
#include "shells/qt/BriefRunningApplicationsCache.hpp"
#include "shells/qt/MessageBoxUpdateAnswers.hpp"
#include "shells/qt/QtApplication.hpp"
#include "shells/qt/QtLocalKeyMonitor.hpp"
#include "shells/qt/QtTimers.hpp"
#include "shells/qt/QtUnifiedLog.hpp"
#include "shells/qt/QtUserDefaults.hpp"
#include "shells/qt/QtWindows.hpp"
#include "backends/posix/SystemClock.hpp"
#include "shells/qt/TrayStatusItem.hpp"

#include <QCoreApplication>
#include <QKeyEvent>

namespace hg {

namespace {

// The macOS virtual key code of a key event from its native key code: the
// X11 (and Wayland) key code is evdev + 8.
std::optional<std::uint16_t> nativeMacKeyCode(const QKeyEvent& event) {
    if (event.nativeScanCode() == 0) {
        return std::nullopt; // synthesized: Qt's key is all there is
    }
    return KeyCodeTable::macKeyCode(event.nativeScanCode());
}

} // namespace

struct DesktopPlatform::Backends {
    Backends() : statusItem(out), windows(defaults.settings(), application) {}

    StdoutLineSink out;
    SystemClock clock;
    QtTimers timers;
    QtUserDefaults defaults;
    TrayStatusItem statusItem;
    QtApplication application;
    QtWindows windows;
    AtspiAccessibility accessibility;
    ProcRunningApplications runningApplications{ProcRunningApplications::Options{
        .registeredProcesses = [this] { return accessibility.registeredProcessIds(); }}};
    BriefRunningApplicationsCache recentApplications{runningApplications, clock,
                                                     std::chrono::milliseconds(100)};
    PosixFileSystem fileSystem;
    PosixProcessRunner processRunner;
    X11EventTap eventTap{defaults, out};
    XkbKeyboardLayout keyboardLayout;
    QtLocalKeyMonitor localKeyMonitor{nativeMacKeyCode};
    XdgLoginItems loginItems{QCoreApplication::applicationFilePath().toStdString()};
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
