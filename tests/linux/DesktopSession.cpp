#include "DesktopSession.hpp"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace hg::test {

namespace {

using namespace std::chrono_literals;

std::string& reason() {
    static std::string text;
    return text;
}

// Starts `spec` with fd 3 as the write end of a pipe and returns the first
// line written there (dbus-daemon --print-address=3, Xvfb -displayfd 3).
std::optional<std::string> startAndRead(ChildProcess::Spec spec,
                                        std::unique_ptr<ChildProcess>& child) {
    int fds[2];
    if (::pipe(fds) != 0) {
        return std::nullopt;
    }
    spec.extraOutputFd = fds[1];
    child = std::make_unique<ChildProcess>(spec);
    ::close(fds[1]);
    std::string buffer;
    auto line = child->started() ? readLineFrom(fds[0], buffer, 10s) : std::nullopt;
    ::close(fds[0]);
    return line;
}

} // namespace

const std::string& DesktopSession::skipReason() {
    return reason();
}

DesktopSession* DesktopSession::shared() {
    static std::unique_ptr<DesktopSession> session = [] {
        std::unique_ptr<DesktopSession> s(new DesktopSession());
        if (!s->start(reason())) {
            s.reset();
        }
        return s;
    }();
    return session.get();
}

bool DesktopSession::start(std::string& why) {
    for (const char* program : {"dbus-daemon", "Xvfb"}) {
        if (!findProgram(program)) {
            why = std::string(program) + " is not installed, so no private desktop can run here";
            return false;
        }
    }
    char scratchTemplate[] = "/tmp/hg-a11y-XXXXXX";
    if (::mkdtemp(scratchTemplate) == nullptr) {
        why = "no scratch directory could be made under /tmp";
        return false;
    }
    scratch_ = scratchTemplate;
    for (const char* sub : {"/home", "/runtime", "/config", "/cache"}) {
        ::mkdir((scratch_ + sub).c_str(), 0700);
    }
    ::setenv("HOME", (scratch_ + "/home").c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", (scratch_ + "/runtime").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (scratch_ + "/config").c_str(), 1);
    ::setenv("XDG_CACHE_HOME", (scratch_ + "/cache").c_str(), 1);
    // The accessibility switch is a GSettings key: kept in memory it dies
    // with this session whatever a test sets it to.
    ::setenv("GSETTINGS_BACKEND", "memory", 1);
    ::unsetenv("AT_SPI_BUS_ADDRESS");
    ::unsetenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");

    const auto address =
        startAndRead({.argv = {"dbus-daemon", "--session", "--nofork", "--print-address=3"},
                      .stderrPath = scratch_ + "/dbus.log"},
                     bus_);
    if (!address || address->empty()) {
        why = "the private session bus (dbus-daemon --session) did not start";
        return false;
    }
    busAddress_ = *address;
    ::setenv("DBUS_SESSION_BUS_ADDRESS", busAddress_.c_str(), 1);

    const auto display = startAndRead(
        {.argv = {"Xvfb", "-displayfd", "3", "-nolisten", "tcp", "-screen", "0", "1024x768x24"},
         .stderrPath = scratch_ + "/xvfb.log"},
        display_);
    if (!display || display->empty()) {
        why = "Xvfb did not start";
        return false;
    }
    ::setenv("DISPLAY", (":" + *display).c_str(), 1);
    return true;
}

DesktopSession::~DesktopSession() {
    // The bus first: the accessibility bus launcher and the registry end with it.
    if (bus_) {
        bus_->signal(SIGTERM);
        bus_->finish(2s);
    }
    if (display_) {
        display_->signal(SIGTERM);
        display_->finish(2s);
    }
    std::error_code ignored;
    if (!scratch_.empty()) {
        std::filesystem::remove_all(scratch_, ignored);
    }
}

} // namespace hg::test
