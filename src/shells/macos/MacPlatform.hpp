#pragma once

#include "ports/Platform.hpp"

#include <memory>

namespace hg {

class SparkleUpdater;

// The one place that picks the backend of every port for the macOS program:
// AppKit for the status item, the windows and the application, Foundation for
// timers and user defaults, Accessibility, Core Graphics event taps and Text
// Input Sources for the keyboard, ServiceManagement for the login item, os_log,
// Sparkle for updates, and POSIX for child processes, files and standard
// output.
//
// Build it once the shared NSApplication exists; it must outlive the
// application delegate. `updaterDelegate` is the Objective-C object that
// answers the update framework (see SparkleUpdater); it must outlive this.
class MacPlatform {
public:
    explicit MacPlatform(void* updaterDelegate);
    ~MacPlatform();
    MacPlatform(const MacPlatform&) = delete;
    MacPlatform& operator=(const MacPlatform&) = delete;

    [[nodiscard]] Platform& platform();
    [[nodiscard]] SparkleUpdater& updater();
    // The windows' views refer to the application's objects: call this before
    // the application goes.
    void destroyWindows();

private:
    struct Backends;
    std::unique_ptr<Backends> backends_;
    std::unique_ptr<Platform> platform_;
};

} // namespace hg
