#pragma once

#include "platform/Platform.hpp"

#include <memory>

namespace hg {

class QtUserDefaults;
class TrayStatusItem;

// The one place that picks the backend of every port for the desktop
// program: Qt for the user interface, timers and settings, POSIX for child
// processes and files, and the platform's own backends for accessibility,
// the keyboard, login items and updates. Where a platform has no backend
// yet, a stand-in answers "not available" (untrusted, no tap, no login item,
// no updates), so the program runs and says so through its usual lines.
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

private:
    struct Backends;
    std::unique_ptr<Backends> backends_;
    std::unique_ptr<Platform> platform_;
};

} // namespace hg
