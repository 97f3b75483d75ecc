#pragma once

#include <QProcess>
#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace hg {
class AtspiAccessibility;
}

// What the Linux tests and benchmarks run against: child processes whose
// output they read, a private desktop, the fixture meeting application on it.
namespace hg::test {

using namespace std::chrono_literals;

// Generous: the first fixture application also starts the accessibility bus.
inline constexpr std::chrono::milliseconds patience = 20s;

// Waits until `done` holds, handling Qt's events meanwhile when there is an
// application; false when `limit` passes first.
bool waitUntil(const std::function<bool()>& done, std::chrono::milliseconds limit = patience);

// Makes this test program's Qt application unless there is one: a
// QGuiApplication on the private display when `gui`, else a QCoreApplication.
// It ends with the tests, before main() returns. False without a display.
bool makeQtApplication(bool gui = false);

// Runs xdotool on the private display and waits until it is done.
void xdotool(std::initializer_list<std::string> arguments);

// A child process with pipes to its standard input and from its standard
// output; standard error goes to `logPath`. argv[0] is looked up in PATH
// (`env` sets variables of its own). Killed and reaped with the object, and
// killed by the kernel if the test process dies first. Ended during a test,
// its standard error is checked: a sanitizer report in it fails the test, and
// when the test has failed it is printed, since the log dies with the session.
class ChildProcess {
public:
    explicit ChildProcess(std::vector<std::string> argv, const std::string& logPath = "/dev/null");
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return static_cast<pid_t>(process_.processId()); }
    // Writes `line` and a line feed; false when its input is closed.
    bool send(const std::string& line);
    // Reads lines until one starts with `prefix` and returns it; none at the
    // end of its output or when `limit` passes.
    std::optional<std::string> waitForLine(const std::string& prefix,
                                           std::chrono::milliseconds limit = patience);
    // Every line read so far, in order.
    [[nodiscard]] const std::vector<std::string>& linesRead() const { return lines_; }
    // What it has written to its standard error so far (its part of the log).
    [[nodiscard]] std::string errorOutput() const;

    void signal(int number) const;
    // Whether it has ended within `limit` (and is reaped).
    bool waitForExit(std::chrono::milliseconds limit);
    // Asks it to end (SIGTERM), and kills it when it has not within `limit`.
    void stop(std::chrono::milliseconds limit = 5s);
    void kill();

private:
    void reportErrorOutput() const;

    QProcess process_;
    std::vector<std::string> lines_;
    std::string logPath_;
    std::uintmax_t logStart_ = 0;
};

// A private desktop, as `dbus-run-session` under Xvfb: its own X display,
// session bus and accessibility bus (its address published on the root
// window as AT_SPI_BUS, as desktops do, where Qt 5 looks first), scratch home
// with GSettings kept in memory, so nothing a test switches outlives it or
// reaches the user's desktop. This process's environment points at it
// (DISPLAY, DBUS_SESSION_BUS_ADDRESS, HOME, XDG_*), and children inherit it.
class DesktopSession {
public:
    // Started on first use, before QtDBus opens a session bus; null when it
    // cannot run here, with the reason in skipReason().
    static DesktopSession* shared();
    static const std::string& skipReason() { return skipReason_; }
    ~DesktopSession();

    [[nodiscard]] const std::string& scratchDir() const { return scratch_; }

private:
    DesktopSession() = default;
    bool start(std::string& why);
    void publishAccessibilityBus() const;

    static std::string skipReason_;
    std::string scratch_;
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> display_;
};

// The toolkits the fixture meeting application is written with: Qt 6
// (hg-fixture-app), and GTK 3 and Qt 5 (Python scripts on Debian's bindings),
// each building its "Meeting" menu the way programs of that toolkit do.
enum class Toolkit { qt6, gtk3, qt5 };
const char* toolkitName(Toolkit toolkit);

// The fixture meeting application on the private desktop, with its
// accessibility tree exported. It runs under a process name of its own, so
// that parallel tests never find each other's.
class FixtureApp : public ChildProcess {
public:
    // Starts it and waits until `ax` reads its menu bar; null, with the
    // reason, when it does not come up.
    static std::unique_ptr<FixtureApp> start(AtspiAccessibility& ax, std::string& whyNot,
                                             Toolkit toolkit = Toolkit::qt6);

    // As /proc/PID/comm shows it.
    [[nodiscard]] const std::string& processName() const { return name_; }
    // Sends a command and returns the state afterwards ("muted", ...).
    std::string command(const std::string& text);
    std::string state() { return command("state"); }
    // How often its mute item has been pressed so far.
    int presses();
    // Kills it and waits until the registry has forgotten it.
    void kill(AtspiAccessibility& ax);

private:
    FixtureApp(std::string name, std::vector<std::string> argv, const std::string& logPath);

    std::string name_;
};

} // namespace hg::test
