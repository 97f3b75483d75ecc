#include "shells/qt/ScriptingClient.hpp"

#include "app/RemoteCommand.hpp"
#include "app/StatusReport.hpp"
#include "backends/posix/StdoutLineSink.hpp"
#include "shells/qt/ScriptingService.hpp"
#include "shells/qt/StatusFollower.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMetaType>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace hg {

namespace {

// Long enough for a toggle that waits on a slow meeting application.
constexpr int callTimeoutMs = 10000;

// Why a command failed: one whole line on standard error.
class StderrLineSink final : public LineSink {
public:
    void line(std::string_view text) override {
        std::string whole(text);
        whole.push_back('\n');
        std::fwrite(whole.data(), 1, whole.size(), stderr);
        std::fflush(stderr);
    }
};

const char* methodOf(RemoteCommand command) {
    switch (command) {
    case RemoteCommand::toggle:
        return "Toggle";
    case RemoteCommand::mute:
        return "Mute";
    case RemoteCommand::unmute:
        return "Unmute";
    case RemoteCommand::press:
        return "PressAt";
    case RemoteCommand::release:
        return "ReleaseAt";
    case RemoteCommand::preferences:
        return "ShowPreferences";
    case RemoteCommand::debug:
        return "ShowDebugView";
    case RemoteCommand::status:
        break;
    }
    return nullptr;
}

// QtDBus's connection thread ends in an exit handler, and may still read a
// late message then (the bus's greeting). Qt's table of registered types is
// torn down before that handler when QtDBus made it, and the thread then
// complains on standard error about "an invalid type". Made first, the table
// outlives the thread.
void keepTypesPastTheBus() {
    (void)QMetaType::fromType<QDBusVariant>().id();
}

enum class Failure { none, absent, other };

// The reply, or one line on `out` saying why there is none.
Failure ask(QDBusConnection& bus, const QDBusMessage& call, LineSink& out,
            QDBusMessage* answer = nullptr) {
    if (!bus.isConnected()) {
        out.line("HushGremlin cannot be reached: there is no session bus");
        return Failure::other;
    }
    const QDBusMessage reply = bus.call(call, QDBus::Block, callTimeoutMs);
    if (reply.type() == QDBusMessage::ReplyMessage) {
        if (answer != nullptr) {
            *answer = reply;
        }
        return Failure::none;
    }
    const QString error = reply.errorName();
    if (error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
        error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
        out.line(StatusReport::notRunningLine);
        return Failure::absent;
    }
    if (error == QLatin1String("org.freedesktop.DBus.Error.NoReply") ||
        error == QLatin1String("org.freedesktop.DBus.Error.Timeout")) {
        out.line("HushGremlin did not answer within " + std::to_string(callTimeoutMs / 1000) +
                 " seconds");
    } else if (error == QLatin1String(scripting::noCallError) ||
               error == QLatin1String(scripting::refusedError)) {
        out.line(reply.errorMessage().toStdString());
    } else {
        out.line("HushGremlin could not do it: " + error.toStdString());
    }
    return Failure::other;
}

int printStatus(QDBusConnection& bus, bool json, LineSink& out, LineSink& err) {
    QDBusMessage answer;
    // "Not running" is a status to print, on standard output.
    StatusReport report;
    const Failure failure =
        ask(bus, scripting::propertiesCall(QStringLiteral("GetAll")), json ? err : out, &answer);
    if (failure == Failure::none) {
        report = StatusFollower::reportFrom(scripting::propertiesOf(answer));
        if (!report.status) {
            err.line("HushGremlin gave no status");
            return 1;
        }
    }
    if (json && failure != Failure::other) {
        out.line(report.json());
    } else if (failure == Failure::none) {
        out.line(report.line());
    }
    return failure == Failure::none ? 0 : 1;
}

std::chrono::nanoseconds clockReading(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

// When this process was started, on CLOCK_MONOTONIC: a key binding that
// starts the press and then the release issues them in that order, though
// the release may be the first to reach main() on a busy machine. The kernel
// keeps the start on CLOCK_BOOTTIME in clock ticks (/proc/self/stat, field
// 22); the age it gives is taken from the monotonic clock's reading. Now,
// when that cannot be read.
std::chrono::nanoseconds startedAt() {
    const auto monotonic = clockReading(CLOCK_MONOTONIC);
    const auto boot = clockReading(CLOCK_BOOTTIME);
    std::ifstream file("/proc/self/stat");
    std::string stat;
    std::getline(file, stat);
    const auto nameEnd = stat.rfind(')');
    const long ticksPerSecond = sysconf(_SC_CLK_TCK);
    if (nameEnd == std::string::npos || ticksPerSecond <= 0) {
        return monotonic;
    }
    // Fields 3 to 21 come between the name and the start.
    std::istringstream fields(stat.substr(nameEnd + 1));
    std::string skipped;
    for (int field = 3; field < 22 && fields >> skipped; ++field) {
    }
    unsigned long long ticks = 0;
    if (!(fields >> ticks)) {
        return monotonic;
    }
    const auto start =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(
            static_cast<double>(ticks) / static_cast<double>(ticksPerSecond)));
    const auto age = boot - start;
    return age > std::chrono::nanoseconds::zero() ? monotonic - age : monotonic;
}

} // namespace

bool ScriptingClient::isCommand(int argc, char** argv) {
    return argc > 1 && argv[1][0] != '-';
}

int ScriptingClient::run(int argc, char** argv) {
    // A press and a release started together are put back in this order by
    // the program.
    const auto issuedAt = startedAt();
    StdoutLineSink out;
    StderrLineSink err;
    const std::vector<std::string_view> args(argv + 1, argv + argc);
    const auto line = CommandLine::parse(args);
    if (!line) {
        err.line(CommandLine::usage);
        return 2;
    }
    keepTypesPastTheBus();
    QCoreApplication app(argc, argv);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (line->command == RemoteCommand::status) {
        if (line->follow) {
            return StatusFollower::follow(bus, line->json, out, err);
        }
        return printStatus(bus, line->json, out, err);
    }
    QDBusMessage call = scripting::methodCall(QString::fromLatin1(methodOf(line->command)));
    if (line->command == RemoteCommand::press || line->command == RemoteCommand::release) {
        call << static_cast<qlonglong>(issuedAt.count());
    }
    return ask(bus, call, err) == Failure::none ? 0 : 1;
}

int ScriptingClient::handOver(LineSink& out) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (ask(bus, scripting::methodCall(QStringLiteral("ShowPreferences")), out) != Failure::none) {
        return 1;
    }
    out.line("HushGremlin is already running: its preferences are shown");
    return 0;
}

} // namespace hg
