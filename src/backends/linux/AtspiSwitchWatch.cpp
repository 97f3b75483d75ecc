#include "backends/linux/AtspiSwitchWatch.hpp"

#include <QDBusConnection>
#include <QDBusServiceWatcher>

namespace hg {

namespace {

const QString launcherService = QStringLiteral("org.a11y.Bus");
const QString launcherPath = QStringLiteral("/org/a11y/bus");
const QString statusInterface = QStringLiteral("org.a11y.Status");
const QString isEnabled = QStringLiteral("IsEnabled");

} // namespace

AtspiSwitchWatch::AtspiSwitchWatch() = default;

AtspiSwitchWatch::~AtspiSwitchWatch() {
    if (subscribed_) {
        QDBusConnection::sessionBus().disconnect(
            launcherService, launcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("PropertiesChanged"), this,
            SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    }
}

bool AtspiSwitchWatch::start() {
    if (subscribed_) {
        return true;
    }
    QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) {
        return false;
    }
    subscribed_ = session.connect(launcherService, launcherPath,
                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                  QStringLiteral("PropertiesChanged"), this,
                                  SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    if (subscribed_) {
        // A launcher started anew says nothing of its switch: ask it again.
        owner_ = new QDBusServiceWatcher(launcherService, session,
                                         QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
                [this] { known_.reset(); });
    }
    return subscribed_;
}

void AtspiSwitchWatch::remember(std::optional<bool> enabled) {
    if (subscribed_) {
        known_ = enabled;
    }
}

void AtspiSwitchWatch::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                         const QStringList& invalidated) {
    if (interface != statusInterface) {
        return;
    }
    const auto value = changed.find(isEnabled);
    if (value != changed.end() && value->typeId() == QMetaType::Bool) {
        known_ = value->toBool();
    } else if (value != changed.end() || invalidated.contains(isEnabled)) {
        known_.reset();
    }
}

} // namespace hg
