#include "backends/linux/AtspiSwitchWatch.hpp"

#include "backends/linux/AtspiNames.hpp"

#include <QDBusConnection>
#include <QDBusServiceWatcher>

namespace hg {

bool AtspiSwitchWatch::start() {
    if (subscribed_) {
        return true;
    }
    QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) {
        return false;
    }
    // The connection ends with this object.
    subscribed_ =
        session.connect(atspiName::launcherService, atspiName::launcherPath,
                        atspiName::propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                        SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    if (subscribed_) {
        // A launcher started anew says nothing of its switch: ask it again.
        auto* owner = new QDBusServiceWatcher(atspiName::launcherService, session,
                                              QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { known_.reset(); });
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
    if (interface != atspiName::statusInterface) {
        return;
    }
    const auto value = changed.find(atspiName::isEnabled);
    if (value != changed.end() && value->typeId() == QMetaType::Bool) {
        known_ = value->toBool();
    } else if (value != changed.end() || invalidated.contains(atspiName::isEnabled)) {
        known_.reset();
    }
}

} // namespace hg
