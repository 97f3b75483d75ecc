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
#include <string>
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

} // namespace

bool ScriptingClient::isCommand(int argc, char** argv) {
    return argc > 1 && argv[1][0] != '-';
}

int ScriptingClient::run(int argc, char** argv) {
    // When the command was issued, before anything slow: a press and a
    // release started together are put back in this order by the program.
    const auto issuedAt = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
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
