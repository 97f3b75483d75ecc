#include "platform/qt/DesktopPlatform.hpp"

#include "platform/StdoutLineSink.hpp"
#include "platform/fake/FakeAccessibility.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeLoginItems.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/fake/FakeUpdater.hpp"
#include "platform/posix/PosixFileSystem.hpp"
#include "platform/posix/PosixProcessRunner.hpp"
#include "platform/qt/QtApplication.hpp"
#include "platform/qt/QtLocalKeyMonitor.hpp"
#include "platform/qt/QtTimers.hpp"
#include "platform/qt/QtUnifiedLog.hpp"
#include "platform/qt/QtUserDefaults.hpp"
#include "platform/qt/QtWindows.hpp"
#include "platform/qt/SystemClock.hpp"
#include "platform/qt/TrayStatusItem.hpp"

#if defined(__linux__)
#include "platform/linux/AtspiAccessibility.hpp"
#include "platform/linux/ProcRunningApplications.hpp"
#include "platform/linux/X11EventTap.hpp"
#include "platform/linux/XkbKeyboardLayout.hpp"
#endif

namespace hg {

struct DesktopPlatform::Backends {
    Backends() : statusItem(out), windows(defaults.settings(), application) {
#if !defined(__linux__)
        eventTap.installable = false;
#endif
        updater.onCheck = [this] { out.line("Updates are not available in this build"); };
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
    PosixFileSystem fileSystem;
    PosixProcessRunner processRunner;
#if defined(__linux__)
    X11EventTap eventTap{defaults, out};
    XkbKeyboardLayout keyboardLayout;
#else
    FakeEventTap eventTap; // not installable: no backend yet
    FakeKeyboardLayout keyboardLayout;
#endif
    QtLocalKeyMonitor localKeyMonitor;
    FakeLoginItems loginItems;
    QtUnifiedLog unifiedLog;
    FakeUpdater updater;
};

DesktopPlatform::DesktopPlatform() : backends_(std::make_unique<Backends>()) {
    Backends& b = *backends_;
    platform_ = std::make_unique<Platform>(
        Platform{b.clock, b.timers, b.out, b.defaults, b.statusItem, b.windows, b.application,
                 b.accessibility, b.runningApplications, b.fileSystem, b.processRunner, b.eventTap,
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
