#include "shells/qt/ScriptingService.hpp"

#include "app/RemoteControl.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>
#include <QVariantMap>

namespace hg {

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
    : remote_(remote), announced_(status()) {
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

void ScriptingService::Press() {
    remote_.press();
}

void ScriptingService::Release() {
    remote_.release();
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
        if (now == announced_) {
            return;
        }
        announced_ = now;
        QDBusMessage changed = QDBusMessage::createSignal(
            QString::fromLatin1(scripting::objectPath),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
        changed << QString::fromLatin1(scripting::interfaceName)
                << QVariantMap{{QStringLiteral("Status"), now}} << QStringList();
        QDBusConnection::sessionBus().send(changed);
    });
}

} // namespace hg
