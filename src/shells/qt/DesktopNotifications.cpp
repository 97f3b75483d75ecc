#include "shells/qt/DesktopNotifications.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

namespace hg {

void DesktopNotifications::notify(const QString& summary, const QString& body) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    // app_name, replaces_id, app_icon, summary, body, actions, hints, and the
    // server's own expiry (-1).
    call << QStringLiteral("HushGremlin") << 0U << QStringLiteral("app.hushgremlin.HushGremlin")
         << summary << body << QStringList()
         << QVariantMap{{QStringLiteral("desktop-entry"),
                         QStringLiteral("app.hushgremlin.HushGremlin")}}
         << -1;
    call.setAutoStartService(true);
    // Sent without waiting: the answer is of no use.
    QDBusConnection::sessionBus().send(call);
}

} // namespace hg
