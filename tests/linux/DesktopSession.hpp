#pragma once

#include "ChildProcess.hpp"

#include <memory>
#include <string>

namespace hg::test {

// A private desktop for the tests, the same as `dbus-run-session` under Xvfb:
// its own session bus (which starts the accessibility bus and registry on
// demand), its own X display, and a scratch home with GSettings kept in
// memory, so nothing a test switches (the accessibility switch) outlives it
// or touches the user's desktop. Environment variables of this process point
// at it (DBUS_SESSION_BUS_ADDRESS, DISPLAY, HOME, XDG_*), so children inherit
// it. Started once per test process, before QtDBus first opens the session
// bus, and torn down at exit.
class DesktopSession {
public:
    // The session, started on first use; null when it cannot run here, with
    // the reason in skipReason().
    static DesktopSession* shared();
    static const std::string& skipReason();

    ~DesktopSession();

    [[nodiscard]] const std::string& scratchDir() const { return scratch_; }
    [[nodiscard]] const std::string& busAddress() const { return busAddress_; }

private:
    DesktopSession() = default;
    bool start(std::string& why);

    std::string scratch_;
    std::string busAddress_;
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> display_;
};

} // namespace hg::test
