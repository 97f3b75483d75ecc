#include "shells/macos/MacPlatform.hpp"

#include "backends/macos/CoreAudioMicrophone.hpp"
#include "backends/macos/MacAccessibility.hpp"
#include "backends/macos/MacApplication.hpp"
#include "backends/macos/MacEventTap.hpp"
#include "backends/macos/MacKeyboardLayout.hpp"
#include "backends/macos/MacLocalKeyMonitor.hpp"
#include "backends/macos/MacLoginItems.hpp"
#include "backends/macos/MacRunningApplications.hpp"
#include "backends/macos/MacTimers.hpp"
#include "backends/macos/MacUnifiedLog.hpp"
#include "backends/macos/MacUserDefaults.hpp"
#include "backends/posix/PosixFileSystem.hpp"
#include "backends/posix/PosixProcessRunner.hpp"
#include "backends/posix/StdoutLineSink.hpp"
#include "backends/posix/SystemClock.hpp"
#include "shells/macos/MacStatusItem.hpp"
#include "shells/macos/MacWindows.hpp"
#include "shells/macos/SparkleUpdater.hpp"

namespace hg {

struct MacPlatform::Backends {
    explicit Backends(void* updaterDelegate) : updater(updaterDelegate, out), microphone(out) {}

    StdoutLineSink out;
    SystemClock clock;
    MacTimers timers;
    MacUserDefaults defaults;
    MacStatusItem statusItem;
    MacWindows windows;
    MacApplication application;
    MacAccessibility accessibility;
    MacRunningApplications runningApplications;
    PosixFileSystem fileSystem;
    PosixProcessRunner processRunner;
    MacEventTap eventTap;
    MacKeyboardLayout keyboardLayout;
    MacLocalKeyMonitor localKeyMonitor;
    MacLoginItems loginItems;
    MacUnifiedLog unifiedLog;
    SparkleUpdater updater;
    CoreAudioMicrophone microphone;
};

MacPlatform::MacPlatform(void* updaterDelegate)
    : backends_(std::make_unique<Backends>(updaterDelegate)) {
    Backends& b = *backends_;
    platform_ = std::make_unique<Platform>(Platform{
        b.clock, b.timers, b.out, b.defaults, b.statusItem, b.windows, b.application,
        b.accessibility, b.runningApplications, b.fileSystem, b.processRunner, b.eventTap,
        b.keyboardLayout, b.localKeyMonitor, b.loginItems, b.unifiedLog, b.updater, b.microphone});
}

MacPlatform::~MacPlatform() = default;

Platform& MacPlatform::platform() {
    return *platform_;
}

SparkleUpdater& MacPlatform::updater() {
    return backends_->updater;
}

void MacPlatform::destroyWindows() {
    backends_->windows.destroyAll();
}

} // namespace hg
