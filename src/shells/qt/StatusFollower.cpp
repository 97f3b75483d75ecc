#include "shells/qt/StatusFollower.hpp"

#include "shells/qt/ScriptingService.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusServiceWatcher>

namespace hg {

namespace {

constexpr int readTimeoutMs = 10000;

std::optional<MeetingStatus> statusNamed(const QString& name) {
    return StatusReport::statusNamed(name.toStdString());
}

} // namespace

StatusReport StatusFollower::reportFrom(const QVariantMap& properties) {
    return {statusNamed(properties.value(QStringLiteral("Status")).toString()),
            properties.value(QStringLiteral("App")).toString().toStdString()};
}

StatusFollower::StatusFollower(QDBusConnection& bus, bool json, LineSink& out)
    : bus_(bus), json_(json), out_(out) {}

int StatusFollower::follow(QDBusConnection& bus, bool json, LineSink& out, LineSink& err) {
    StatusFollower follower(bus, json, out);
    if (!follower.subscribe()) {
        err.line("HushGremlin cannot be reached: there is no session bus");
        return 1;
    }
    follower.readAll();
    return QCoreApplication::exec();
}

bool StatusFollower::subscribe() {
    if (!bus_.isConnected()) {
        return false;
    }
    // Subscribed before the first reading, so that no change falls between.
    watcher_ = new QDBusServiceWatcher(QString::fromLatin1(scripting::serviceName), bus_,
                                       QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                if (newOwner.isEmpty()) {
                    show({});
                } else {
                    readAll();
                }
            });
    return bus_.connect(
        QString::fromLatin1(scripting::serviceName), QString::fromLatin1(scripting::objectPath),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"),
        this, SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
}

void StatusFollower::readAll() {
    const QDBusMessage reply =
        bus_.call(scripting::propertiesCall(QStringLiteral("GetAll")), QDBus::Block, readTimeoutMs);
    // An error (not there yet, gone, or no answer) reads as "not running"
    // until the bus says otherwise.
    show(reply.type() == QDBusMessage::ReplyMessage ? reportFrom(scripting::propertiesOf(reply))
                                                    : StatusReport{});
}

void StatusFollower::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                       const QStringList& /*invalidated*/) {
    if (interface != QLatin1String(scripting::interfaceName)) {
        return;
    }
    StatusReport report = report_;
    if (changed.contains(QStringLiteral("Status"))) {
        report.status = statusNamed(changed.value(QStringLiteral("Status")).toString());
    }
    if (changed.contains(QStringLiteral("App"))) {
        report.app = changed.value(QStringLiteral("App")).toString().toStdString();
    }
    show(report);
}

void StatusFollower::show(const StatusReport& report) {
    report_ = report;
    std::string text = json_ ? report.json() : report.line();
    if (shown_ == text) {
        return;
    }
    out_.line(text);
    shown_ = std::move(text);
}

} // namespace hg
