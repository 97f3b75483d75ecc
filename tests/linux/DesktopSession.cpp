#include "DesktopSession.hpp"

#include "backends/linux/AtspiAccessibility.hpp"

#include <QGuiApplication>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace hg::test {

namespace {

using Clock = std::chrono::steady_clock;

std::unique_ptr<QCoreApplication>& application() {
    static std::unique_ptr<QCoreApplication> made;
    return made;
}

// Qt must not be torn down during static destruction.
class QtTeardown final : public ::testing::Environment {
public:
    void TearDown() override { application().reset(); }
};
[[maybe_unused]] const auto* const qtTeardown =
    ::testing::AddGlobalTestEnvironment(new QtTeardown());

bool registered(AtspiAccessibility& ax, pid_t pid) {
    const auto pids = ax.registeredProcessIds();
    return std::find(pids.begin(), pids.end(), pid) != pids.end();
}

} // namespace

bool waitUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (!done()) {
        if (Clock::now() > deadline) {
            return false;
        }
        if (QCoreApplication::instance() != nullptr) {
            QCoreApplication::processEvents();
        }
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

bool makeQtApplication(bool gui) {
    if (QCoreApplication::instance() == nullptr) {
        static int argc = 1;
        static char name[] = "hg-linux-tests";
        static char* argv[] = {name, nullptr};
        if (!gui) {
            application() = std::make_unique<QCoreApplication>(argc, argv);
        } else if (DesktopSession::shared() != nullptr) {
            ::setenv("QT_QPA_PLATFORM", "xcb", 1);
            application() = std::make_unique<QGuiApplication>(argc, argv);
        }
    }
    return !gui || qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

void xdotool(std::initializer_list<std::string> arguments) {
    std::vector<std::string> argv{"xdotool"};
    argv.insert(argv.end(), arguments);
    ChildProcess(argv).waitForExit(10s);
}

ChildProcess::ChildProcess(std::vector<std::string> argv, const std::string& logPath) {
    QStringList arguments;
    for (const auto& argument : argv) {
        arguments << QString::fromStdString(argument);
    }
    process_.setProgram(arguments.takeFirst());
    process_.setArguments(arguments);
    process_.setStandardErrorFile(QString::fromStdString(logPath), QIODevice::Append);
    if (logPath != "/dev/null") {
        std::error_code none;
        logPath_ = logPath;
        logStart_ =
            std::filesystem::exists(logPath, none) ? std::filesystem::file_size(logPath, none) : 0;
    }
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process_.start();
    process_.waitForStarted();
}

ChildProcess::~ChildProcess() {
    kill();
    reportErrorOutput();
}

std::string ChildProcess::errorOutput() const {
    std::ifstream log(logPath_, std::ios::binary);
    if (logPath_.empty() || !log) {
        return {};
    }
    log.seekg(static_cast<std::streamoff>(logStart_));
    return {std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>()};
}

void ChildProcess::reportErrorOutput() const {
    if (::testing::UnitTest::GetInstance()->current_test_info() == nullptr) {
        return;
    }
    const std::string errors = errorOutput();
    const std::string name =
        (QStringList(process_.program()) + process_.arguments()).join(' ').toStdString();
    for (const char* report : {"Sanitizer", "runtime error:"}) {
        if (errors.find(report) != std::string::npos) {
            ADD_FAILURE() << "a sanitizer report in the standard error of " << name << ":\n"
                          << errors;
            return;
        }
    }
    if (::testing::Test::HasFailure() && !errors.empty()) {
        std::cerr << "--- standard error of " << name << " ---\n" << errors << "--- end ---\n";
    }
}

bool ChildProcess::send(const std::string& line) {
    const QByteArray text = QByteArray::fromStdString(line + "\n");
    return process_.write(text) == text.size() && process_.waitForBytesWritten(5000);
}

std::optional<std::string> ChildProcess::waitForLine(const std::string& prefix,
                                                     std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (true) {
        while (process_.canReadLine()) {
            lines_.push_back(process_.readLine().chopped(1).toStdString());
            if (lines_.back().starts_with(prefix)) {
                return lines_.back();
            }
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !process_.waitForReadyRead(static_cast<int>(left.count()))) {
            return std::nullopt;
        }
    }
}

void ChildProcess::signal(int number) const {
    if (process_.state() == QProcess::Running) {
        ::kill(pid(), number);
    }
}

bool ChildProcess::waitForExit(std::chrono::milliseconds limit) {
    return process_.state() == QProcess::NotRunning ||
           process_.waitForFinished(static_cast<int>(limit.count()));
}

void ChildProcess::stop(std::chrono::milliseconds limit) {
    process_.terminate();
    waitForExit(limit);
    kill();
}

void ChildProcess::kill() {
    process_.kill();
    process_.waitForFinished();
}

std::string DesktopSession::skipReason_;

DesktopSession* DesktopSession::shared() {
    static const std::unique_ptr<DesktopSession> session = [] {
        std::unique_ptr<DesktopSession> made(new DesktopSession());
        if (!made->start(skipReason_)) {
            made.reset();
        }
        return made;
    }();
    return session.get();
}

bool DesktopSession::start(std::string& why) {
    char scratch[] = "/tmp/hg-desktop-XXXXXX";
    if (::mkdtemp(scratch) == nullptr) {
        why = "no scratch folder could be made under /tmp";
        return false;
    }
    scratch_ = scratch;
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        const std::string dir = scratch_ + "/" + name;
        ::mkdir(dir.c_str(), 0700);
        ::setenv(name, dir.c_str(), 1);
    }
    // The accessibility switch is a GSettings key: kept in memory, it dies
    // with this session whatever a test sets it to.
    ::setenv("GSETTINGS_BACKEND", "memory", 1);
    // The program under test looks for no meeting app but those a test
    // names: a Zoom or Tuple the user has open stays out of the results.
    ::setenv("HUSHGREMLIN_TEST_APP_IDENTITIES", "", 1);
    for (const char* name : {"AT_SPI_BUS_ADDRESS", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON",
                             "DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY"}) {
        ::unsetenv(name);
    }
    bus_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address=1"},
        scratch_ + "/dbus.log");
    const auto address = bus_->waitForLine("", 10s);
    if (!address || address->empty()) {
        why = "the private session bus (dbus-daemon --session) did not start";
        return false;
    }
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address->c_str(), 1);
    // Xvfb writes the display number it chose once it accepts clients.
    // -noreset: the root window's properties outlive the last client.
    display_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp",
                                 "-screen", "0", "1024x768x24", "-nocursor"},
        scratch_ + "/xvfb.log");
    const auto number = display_->waitForLine("", 10s);
    if (!number || number->empty()) {
        why = "Xvfb did not start (is it installed?)";
        return false;
    }
    // Appended, not concatenated: GCC 12 at -O3 warns falsely (-Wrestrict).
    std::string display(":");
    display.append(*number);
    ::setenv("DISPLAY", display.c_str(), 1);
    publishAccessibilityBus();
    return true;
}

void DesktopSession::publishAccessibilityBus() const {
    const std::string log = scratch_ + "/publish.log";
    // dbus-send ends the address without a line feed.
    ChildProcess ask({"sh", "-c",
                      "dbus-send --session --print-reply=literal --dest=org.a11y.Bus "
                      "/org/a11y/bus org.a11y.Bus.GetAddress && echo"},
                     log);
    std::string address = ask.waitForLine("", 10s).value_or("");
    address.erase(0, address.find_first_not_of(' '));
    if (!address.empty()) {
        ChildProcess({"xprop", "-root", "-f", "AT_SPI_BUS", "8s", "-set", "AT_SPI_BUS", address},
                     log)
            .waitForExit(10s);
    }
}

DesktopSession::~DesktopSession() {
    // The bus first: the accessibility bus launcher and the registry end with it.
    for (auto* child : {bus_.get(), display_.get()}) {
        if (child != nullptr) {
            child->stop(2s);
        }
    }
    std::error_code ignored;
    std::filesystem::remove_all(scratch_, ignored);
}

const char* toolkitName(Toolkit toolkit) {
    switch (toolkit) {
    case Toolkit::qt6:
        return "qt6";
    case Toolkit::gtk3:
        return "gtk3";
    case Toolkit::qt5:
        return "qt5";
    }
    return "?";
}

FixtureApp::FixtureApp(std::string name, std::vector<std::string> argv, const std::string& logPath)
    : ChildProcess(std::move(argv), logPath), name_(std::move(name)) {}

std::unique_ptr<FixtureApp> FixtureApp::start(AtspiAccessibility& ax, std::string& whyNot,
                                              Toolkit toolkit) {
    const DesktopSession* session = DesktopSession::shared();
    if (session == nullptr) {
        whyNot = DesktopSession::skipReason();
        return nullptr;
    }
    // At most 15 bytes, the length the kernel keeps of a process name.
    static int started = 0;
    std::string name = "hgfx" + std::to_string(::getpid()) + "-" + std::to_string(++started % 100);
    const std::string link = session->scratchDir() + "/" + name;
    // The Python fixtures run under a link to Debian's interpreter, which
    // has the toolkit bindings (a python3 earlier in PATH may not).
    const char* program = toolkit == Toolkit::qt6 ? HG_FIXTURE_APP : "/usr/bin/python3";
    if (::symlink(program, link.c_str()) != 0) {
        whyNot = "no link to the fixture application could be made in " + session->scratchDir();
        return nullptr;
    }
    std::vector<std::string> argv{"env", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1",
                                  "QT_QPA_PLATFORM=xcb", "GDK_BACKEND=x11", link};
    if (toolkit == Toolkit::gtk3) {
        argv.emplace_back(HG_FIXTURES_DIR "/meeting-fixture-gtk3.py");
    } else if (toolkit == Toolkit::qt5) {
        argv.emplace_back(HG_FIXTURES_DIR "/meeting-fixture-qt5.py");
    }
    std::unique_ptr<FixtureApp> app(
        new FixtureApp(std::move(name), std::move(argv), session->scratchDir() + "/fixture.log"));
    if (!app->waitForLine("ready ")) {
        whyNot = std::string("the ") + toolkitName(toolkit) +
                 " fixture application did not start on the private display (are its "
                 "toolkit's Python bindings installed?)";
        return nullptr;
    }
    const pid_t pid = app->pid();
    if (!waitUntil([&] {
            return registered(ax, pid) &&
                   ax.copyAttributeValue(ax.createApplication(pid), "AXMenuBar").error ==
                       ax::success;
        })) {
        whyNot = "the fixture application never showed its menu bar on the accessibility bus";
        return nullptr;
    }
    return app;
}

std::string FixtureApp::command(const std::string& text) {
    if (text != "state") {
        send(text);
    }
    send("state");
    const auto line = waitForLine("now ", 10s);
    return line ? line->substr(4) : "no answer";
}

int FixtureApp::presses() {
    state(); // every press before is reported before the state
    return static_cast<int>(std::count(linesRead().begin(), linesRead().end(), "pressed"));
}

void FixtureApp::kill(AtspiAccessibility& ax) {
    const pid_t pid = this->pid();
    ChildProcess::kill();
    waitUntil([&] { return !registered(ax, pid); }, 10s);
}

} // namespace hg::test
