#pragma once

#include "ports/Platform.hpp"

#include <memory>

namespace hg {

class QtUserDefaults;
class TrayStatusItem;

// The one place that picks the backend of every port for the Linux desktop
// program: Qt for the user interface, timers, settings and update checks,
// POSIX for child processes and files, and the Linux backends for
// accessibility (AT-SPI), running applications (/proc), the keyboard (X11,
// or the desktop's shortcut portal on Wayland; xkbcommon) and login items (XDG autostart).
//
// Build it after the QApplication; it must outlive the application delegate.
class DesktopPlatform {
public:
    DesktopPlatform();
    ~DesktopPlatform();
    DesktopPlatform(const DesktopPlatform&) = delete;
    DesktopPlatform& operator=(const DesktopPlatform&) = delete;

    [[nodiscard]] Platform& platform();
    [[nodiscard]] TrayStatusItem& tray();
    [[nodiscard]] QtUserDefaults& defaults();
    // Destroys the windows, whose views refer to the application's objects:
    // call it before the application delegate is destroyed.
    void destroyWindows();

private:
    struct Backends;
    std::unique_ptr<Backends> backends_;
    std::unique_ptr<Platform> platform_;
};

} // namespace hg
