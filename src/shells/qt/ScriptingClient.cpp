#include "shells/qt/ScriptingClient.hpp"

#include "backends/posix/StdoutLineSink.hpp"
#include "shells/qt/ScriptingService.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <array>
#include <string>

namespace hg {

namespace {

// Long enough for a toggle that waits on a slow meeting application.
constexpr int callTimeoutMs = 10000;

struct Command {
    std::string_view word;
    const char* method;
};
constexpr std::array<Command, 6> commands{{
    {"toggle", "Toggle"},
    {"press", "Press"},
    {"release", "Release"},
    {"preferences", "ShowPreferences"},
    {"debug", "ShowDebugView"},
    {"status", nullptr},
}};

QDBusMessage methodCall(const QString& interface, const QString& method) {
    QDBusMessage call = QDBusMessage::createMethodCall(QString::fromLatin1(scripting::serviceName),
                                                       QString::fromLatin1(scripting::objectPath),
                                                       interface, method);
    // A client that starts the program by asking it something would make
    // "not running" impossible to tell.
    call.setAutoStartService(false);
    return call;
}

// The reply, or one line saying why there is none.
std::optional<QDBusMessage> ask(QDBusMessage call, LineSink& out) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        out.line("HushGremlin cannot be reached: there is no session bus");
        return std::nullopt;
    }
    const QDBusMessage reply = bus.call(call, QDBus::Block, callTimeoutMs);
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return reply;
    }
    const QString error = reply.errorName();
    if (error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
        error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
        out.line("HushGremlin is not running");
    } else if (error == QLatin1String("org.freedesktop.DBus.Error.NoReply") ||
               error == QLatin1String("org.freedesktop.DBus.Error.Timeout")) {
        out.line("HushGremlin did not answer within " + std::to_string(callTimeoutMs / 1000) +
                 " seconds");
    } else {
        out.line("HushGremlin could not do it: " + error.toStdString());
    }
    return std::nullopt;
}

int printStatus(LineSink& out) {
    QDBusMessage get =
        methodCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QString::fromLatin1(scripting::interfaceName) << QStringLiteral("Status");
    const auto reply = ask(get, out);
    if (!reply) {
        return 1;
    }
    const QVariant value = reply->arguments().value(0).value<QDBusVariant>().variant();
    const QString status = value.toString();
    if (value.typeId() != QMetaType::QString || status.isEmpty()) {
        out.line("HushGremlin gave no status");
        return 1;
    }
    out.line(status.toStdString());
    return 0;
}

} // namespace

bool ScriptingClient::isCommand(int argc, char** argv) {
    return argc > 1 && argv[1][0] != '-';
}

int ScriptingClient::run(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    StdoutLineSink out;
    const std::string_view word = argv[1];
    for (const Command& command : commands) {
        if (command.word != word) {
            continue;
        }
        if (command.method == nullptr) {
            return printStatus(out);
        }
        return ask(methodCall(QString::fromLatin1(scripting::interfaceName),
                              QString::fromLatin1(command.method)),
                   out)
                   ? 0
                   : 1;
    }
    out.line("Usage: hushgremlin [toggle | press | release | status | preferences | debug]");
    return 2;
}

int ScriptingClient::handOver(LineSink& out) {
    if (!ask(methodCall(QString::fromLatin1(scripting::interfaceName),
                        QStringLiteral("ShowPreferences")),
             out)) {
        return 1;
    }
    out.line("HushGremlin is already running: its preferences are shown");
    return 0;
}

} // namespace hg
