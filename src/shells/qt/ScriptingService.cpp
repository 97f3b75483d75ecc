#include "shells/qt/ScriptingService.hpp"

#include "app/RemoteControl.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>
#include <QVariantMap>
#include <chrono>

namespace hg {

namespace {

IssuedAt arrivedNow() {
    return std::chrono::duration_cast<IssuedAt>(
        std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

namespace scripting {

QDBusMessage methodCall(const QString& method) {
    QDBusMessage call = QDBusMessage::createMethodCall(QString::fromLatin1(serviceName),
                                                       QString::fromLatin1(objectPath),
                                                       QString::fromLatin1(interfaceName), method);
    call.setAutoStartService(false);
    return call;
}

QDBusMessage propertiesCall(const QString& method) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QString::fromLatin1(serviceName), QString::fromLatin1(objectPath),
        QStringLiteral("org.freedesktop.DBus.Properties"), method);
    call.setAutoStartService(false);
    call << QString::fromLatin1(interfaceName);
    return call;
}

QVariantMap propertiesOf(const QDBusMessage& reply) {
    return propertiesOf(reply.arguments().value(0));
}

QVariantMap propertiesOf(const QVariant& argument) {
    if (argument.metaType() == QMetaType::fromType<QDBusArgument>()) {
        const auto marshalled = argument.value<QDBusArgument>();
        if (marshalled.currentSignature() == QLatin1String("a{sv}")) {
            return qdbus_cast<QVariantMap>(marshalled);
        }
        return {};
    }
    return argument.toMap();
}

} // namespace scripting

ScriptingService::Claim ScriptingService::claimName() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return Claim::noBus;
    }
    const auto reply = bus.interface()->registerService(
        QString::fromLatin1(scripting::serviceName), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        return Claim::claimed;
    }
    return reply.isValid() ? Claim::taken : Claim::noBus;
}

ScriptingService::ScriptingService(RemoteControl& remote, LineSink& out)
    : remote_(remote), announced_(status()), announcedApp_(app()) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    exported_ =
        bus.isConnected() &&
        bus.registerObject(QString::fromLatin1(scripting::objectPath),
                           QString::fromLatin1(scripting::interfaceName), this,
                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
    if (!exported_) {
        out.line("No session bus: the hushgremlin command cannot reach this program");
        return;
    }
    subscription_ = remote_.statusWillChange().subscribe([this] { statusMayChange(); });
}

ScriptingService::~ScriptingService() {
    if (exported_) {
        QDBusConnection::sessionBus().unregisterObject(QString::fromLatin1(scripting::objectPath));
    }
}

QString ScriptingService::status() const {
    return QString::fromLatin1(toString(remote_.status()));
}

void ScriptingService::Toggle() {
    remote_.toggle();
}

QString ScriptingService::app() {
    return QString::fromStdString(remote_.activeAppName());
}

void ScriptingService::Mute() {
    setMuted(true);
}

void ScriptingService::Unmute() {
    setMuted(false);
}

void ScriptingService::setMuted(bool muted) {
    const MuteResult result = remote_.setMuted(muted);
    if (result == MuteResult::done) {
        return;
    }
    sendErrorReply(QString::fromLatin1(result == MuteResult::noCall ? scripting::noCallError
                                                                    : scripting::refusedError),
                   QString::fromStdString(muteFailureLine(result, muted, remote_.status())));
}

void ScriptingService::Press() {
    remote_.press(arrivedNow());
}

void ScriptingService::Release() {
    remote_.release(arrivedNow());
}

void ScriptingService::PressAt(qint64 issuedAtNs) {
    remote_.press(IssuedAt(issuedAtNs));
}

void ScriptingService::ReleaseAt(qint64 issuedAtNs) {
    remote_.release(IssuedAt(issuedAtNs));
}

void ScriptingService::ShowPreferences() {
    remote_.showPreferences();
}

void ScriptingService::ShowDebugView() {
    remote_.showDebugView();
}

void ScriptingService::statusMayChange() {
    // Announced before the change: the new status is there on the next turn.
    if (pending_) {
        return;
    }
    pending_ = true;
    QTimer::singleShot(0, this, [this] {
        pending_ = false;
        const QString now = status();
        const QString nowApp = app();
        if (now == announced_ && nowApp == announcedApp_) {
            return;
        }
        announced_ = now;
        announcedApp_ = nowApp;
        QDBusMessage changed = QDBusMessage::createSignal(
            QString::fromLatin1(scripting::objectPath),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
        changed << QString::fromLatin1(scripting::interfaceName)
                << QVariantMap{{QStringLiteral("Status"), now}, {QStringLiteral("App"), nowApp}}
                << QStringList();
        QDBusConnection::sessionBus().send(changed);
    });
}

} // namespace hg
