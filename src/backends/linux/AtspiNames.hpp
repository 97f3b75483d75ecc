#pragma once

#include <QString>

// The D-Bus names AT-SPI 2 is reached by.
namespace hg::atspiName {

// The accessibility bus launcher, on the session bus: the bus's address and
// the desktop's accessibility switch.
inline const QString launcherService = QStringLiteral("org.a11y.Bus");
inline const QString launcherPath = QStringLiteral("/org/a11y/bus");
inline const QString statusInterface = QStringLiteral("org.a11y.Status");
inline const QString isEnabled = QStringLiteral("IsEnabled");

// On the accessibility bus.
inline const QString registryService = QStringLiteral("org.a11y.atspi.Registry");
inline const QString rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");
inline const QString accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
inline const QString actionInterface = QStringLiteral("org.a11y.atspi.Action");
inline const QString componentInterface = QStringLiteral("org.a11y.atspi.Component");

inline const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

} // namespace hg::atspiName
