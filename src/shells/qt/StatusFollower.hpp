#pragma once

#include "app/StatusReport.hpp"
#include "ports/LineSink.hpp"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>
#include <string>

class QDBusConnection;
class QDBusServiceWatcher;

namespace hg {

// `hushgremlin status --follow`: the status now, then one line per change,
// from the service's PropertiesChanged signal (nothing is polled). While the
// program does not run it says so once and waits for it to appear on the bus;
// it follows it again each time it comes back. Ends only when interrupted, or
// when it writes a line to a closed output (SIGPIPE).
class StatusFollower final : public QObject {
    Q_OBJECT

public:
    // Runs the event loop; returns 1 without a session bus.
    [[nodiscard]] static int follow(QDBusConnection& bus, bool json, LineSink& out, LineSink& err);

    // The report of the properties Status and App; no status when they lack it.
    [[nodiscard]] static StatusReport reportFrom(const QVariantMap& properties);

private slots:
    void propertiesChanged(const QString& interface, const QVariantMap& changed,
                           const QStringList& invalidated);

private:
    StatusFollower(QDBusConnection& bus, bool json, LineSink& out);
    bool subscribe();
    void readAll();
    void show(const StatusReport& report);

    QDBusConnection& bus_;
    bool json_;
    LineSink& out_;
    StatusReport report_;
    std::optional<std::string> shown_;
    QDBusServiceWatcher* watcher_ = nullptr;
};

} // namespace hg
