#include "shells/qt/DesktopPlatform.hpp"

#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/KeyCodeTable.hpp"
#include "backends/linux/PortalEventTap.hpp"
#include "backends/linux/ProcRunningApplications.hpp"
#include "backends/linux/PulseMicrophone.hpp"
#include "backends/linux/X11EventTap.hpp"
#include "backends/linux/XkbKeyboardLayout.hpp"
#include "backends/posix/PosixFileSystem.hpp"
#include "backends/posix/PosixProcessRunner.hpp"
#include "backends/posix/StdoutLineSink.hpp"
#include "backends/posix/SystemClock.hpp"
#include "backends/posix/UnavailableMicrophone.hpp"
#include "hotkey/StoredHotkey.hpp"
#include "shells/qt/AppcastUpdater.hpp"
#include "shells/qt/BriefRunningApplicationsCache.hpp"
#include "shells/qt/DesktopNotifications.hpp"
#include "shells/qt/InstalledProgramLoginItems.hpp"
#include "shells/qt/MessageBoxUpdateAnswers.hpp"
#include "shells/qt/QtApplication.hpp"
#include "shells/qt/QtLocalKeyMonitor.hpp"
#include "shells/qt/QtTimers.hpp"
#include "shells/qt/QtUnifiedLog.hpp"
#include "shells/qt/QtUserDefaults.hpp"
#include "shells/qt/QtWindows.hpp"
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

bool isWaylandSession() {
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
}

// A Wayland session shows no program the keys of others, X11 clients
// through Xwayland included: there the desktop's shortcut portal runs the
// shortcut when it can. Elsewhere X11 grabs; without an X11 display either,
// installing the tap fails and the monitor says so.
std::unique_ptr<EventTap> makeEventTap(const ShortcutSource& shortcut, LineSink& out) {
    if (isWaylandSession() && PortalEventTap::isOffered(std::chrono::seconds(2))) {
        out.line("The shortcut goes through the desktop's GlobalShortcuts portal");
        return std::make_unique<PortalEventTap>(shortcut, out);
    }
    return std::make_unique<X11EventTap>(shortcut, out);
}

// Said once at start where no tray can show the icon (stock GNOME): without
// it the program would be invisible.
void tellThatTheIconIsHidden() {
    DesktopNotifications::notify(
        QStringLiteral("HushGremlin runs without its tray icon"),
        QStringLiteral("This desktop shows no tray icons. On GNOME, turn on the AppIndicator "
                       "extension (package gnome-shell-extension-appindicator) and start "
                       "HushGremlin again. Meanwhile the hushgremlin command reaches it: "
                       "hushgremlin status, toggle, press, release, preferences."));
}

// How long to wait for a tray to show the icon before saying there is none:
// HUSHGREMLIN_TRAY_WAIT seconds when set to a number from 0 to 600.
std::chrono::milliseconds trayWait() {
    bool ok = false;
    const int seconds = qEnvironmentVariableIntValue("HUSHGREMLIN_TRAY_WAIT", &ok);
    if (!ok || seconds < 0 || seconds > 600) {
        return TrayStatusItem::defaultTrayWait;
    }
    return std::chrono::seconds(seconds);
}

// The default input through the PulseAudio protocol, which PipeWire serves
// as well; a build without libpulse has none.
std::unique_ptr<Microphone> makeMicrophone(LineSink& out) {
#ifdef HG_WITH_LIBPULSE
    return std::make_unique<PulseMicrophone>(out);
#else
    (void)out;
    return std::make_unique<UnavailableMicrophone>();
#endif
}

} // namespace

struct DesktopPlatform::Backends {
    Backends()
        : statusItem(out, TrayStatusItem::Options{.trayWait = trayWait()}),
          windows(defaults, application) {
        statusItem.setNoTrayCallback(&tellThatTheIconIsHidden);
    }

    StdoutLineSink out;
    SystemClock clock;
    QtTimers timers;
    QtUserDefaults defaults{out};
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
    StoredHotkey storedHotkey{defaults};
    std::unique_ptr<EventTap> eventTap = makeEventTap(storedHotkey, out);
    XkbKeyboardLayout keyboardLayout;
    QtLocalKeyMonitor localKeyMonitor{nativeMacKeyCode};
    InstalledProgramLoginItems loginItems{out};
    QtUnifiedLog unifiedLog;
    MessageBoxUpdateAnswers updateAnswers;
    AppcastUpdater updater{
        AppcastUpdater::Options{.feedUrl = HG_UPDATE_FEED_URL, .currentVersion = HG_VERSION},
        updateAnswers, out};
    std::unique_ptr<Microphone> microphone = makeMicrophone(out);
};

DesktopPlatform::DesktopPlatform() : backends_(std::make_unique<Backends>()) {
    Backends& b = *backends_;
    platform_ = std::make_unique<Platform>(Platform{
        b.clock, b.timers, b.out, b.defaults, b.statusItem, b.windows, b.application,
        b.accessibility, b.recentApplications, b.fileSystem, b.processRunner, *b.eventTap,
        b.keyboardLayout, b.localKeyMonitor, b.loginItems, b.unifiedLog, b.updater, *b.microphone});
}

DesktopPlatform::~DesktopPlatform() = default;

Platform& DesktopPlatform::platform() {
    return *platform_;
}

TrayStatusItem& DesktopPlatform::tray() {
    return backends_->statusItem;
}

void DesktopPlatform::destroyWindows() {
    backends_->windows.destroyAll();
}

QtUserDefaults& DesktopPlatform::defaults() {
    return backends_->defaults;
}

} // namespace hg
