#include "backends/linux/AtspiBus.hpp"

#include "backends/linux/AtspiErrors.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <atomic>

namespace hg {

namespace {

const QString a11yBusService = QStringLiteral("org.a11y.Bus");
const QString a11yBusPath = QStringLiteral("/org/a11y/bus");
const QString statusInterface = QStringLiteral("org.a11y.Status");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QString uniqueConnectionName() {
    static std::atomic<int> counter{0};
    return QStringLiteral("hushgremlin-atspi-%1").arg(++counter);
}

AtspiReply failed(AXError code) {
    return AtspiReply{code, {}};
}

} // namespace

AtspiBus::AtspiBus(std::chrono::milliseconds timeout)
    : timeout_(timeout), connectionName_(uniqueConnectionName()) {}

AtspiBus::~AtspiBus() {
    drop();
}

void AtspiBus::drop() {
    if (open_) {
        QDBusConnection::disconnectFromBus(connectionName_);
        open_ = false;
    }
}

std::optional<QString> AtspiBus::busAddress() {
    const QString fromEnvironment = qEnvironmentVariable("AT_SPI_BUS_ADDRESS");
    if (!fromEnvironment.isEmpty()) {
        return fromEnvironment;
    }
    QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) {
        return std::nullopt;
    }
    const QDBusMessage request = QDBusMessage::createMethodCall(
        a11yBusService, a11yBusPath, a11yBusService, QStringLiteral("GetAddress"));
    ++roundTrips_;
    const QDBusMessage reply =
        session.call(request, QDBus::Block, static_cast<int>(timeout_.count()));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1 ||
        reply.arguments().front().typeId() != QMetaType::QString) {
        return std::nullopt;
    }
    QString address = reply.arguments().front().toString();
    if (address.isEmpty()) {
        return std::nullopt;
    }
    return address;
}

bool AtspiBus::connect() {
    if (open_ && QDBusConnection(connectionName_).isConnected()) {
        return true;
    }
    drop();
    const auto address = busAddress();
    if (!address) {
        return false;
    }
    ++roundTrips_; // the bus's Hello
    const QDBusConnection connection = QDBusConnection::connectToBus(*address, connectionName_);
    if (!connection.isConnected()) {
        QDBusConnection::disconnectFromBus(connectionName_);
        return false;
    }
    open_ = true;
    ++generation_;
    return true;
}

AtspiReply AtspiBus::call(const QString& service, const QString& path, const QString& interface,
                          const QString& method, const QList<QVariant>& arguments) {
    if (!connect()) {
        return failed(axErrorFor(QLatin1String(atspiFailure::busUnreachable)));
    }
    QDBusMessage request = QDBusMessage::createMethodCall(service, path, interface, method);
    request.setArguments(arguments);
    ++roundTrips_;
    QDBusConnection connection(connectionName_);
    const QDBusMessage reply =
        connection.call(request, QDBus::Block, static_cast<int>(timeout_.count()));
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return AtspiReply{ax::success, reply.arguments()};
    }
    if (!connection.isConnected()) {
        drop();
    }
    if (reply.type() == QDBusMessage::ErrorMessage) {
        return failed(axErrorFor(reply.errorName()));
    }
    return failed(axErrorFor(QLatin1String(atspiFailure::badReply)));
}

AtspiReply AtspiBus::property(const QString& service, const QString& path, const QString& interface,
                              const QString& name) {
    AtspiReply reply = call(service, path, propertiesInterface, QStringLiteral("Get"),
                            {QVariant(interface), QVariant(name)});
    if (reply.error != ax::success) {
        return reply;
    }
    if (reply.arguments.size() != 1 || !reply.arguments.front().canConvert<QDBusVariant>()) {
        return failed(axErrorFor(QLatin1String(atspiFailure::badReply)));
    }
    const QVariant value = reply.arguments.front().value<QDBusVariant>().variant();
    return AtspiReply{ax::success, {value}};
}

std::optional<bool> AtspiBus::isEnabled() {
    QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) {
        return std::nullopt;
    }
    QDBusMessage request = QDBusMessage::createMethodCall(
        a11yBusService, a11yBusPath, propertiesInterface, QStringLiteral("Get"));
    request.setArguments({statusInterface, QStringLiteral("IsEnabled")});
    ++roundTrips_;
    const QDBusMessage reply =
        session.call(request, QDBus::Block, static_cast<int>(timeout_.count()));
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1) {
        return std::nullopt;
    }
    const QVariant value = reply.arguments().front().value<QDBusVariant>().variant();
    if (value.typeId() != QMetaType::Bool) {
        return std::nullopt;
    }
    return value.toBool();
}

bool AtspiBus::setEnabled(bool enabled) {
    QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) {
        return false;
    }
    QDBusMessage request = QDBusMessage::createMethodCall(
        a11yBusService, a11yBusPath, propertiesInterface, QStringLiteral("Set"));
    request.setArguments(
        {statusInterface, QStringLiteral("IsEnabled"), QVariant::fromValue(QDBusVariant(enabled))});
    ++roundTrips_;
    const QDBusMessage reply =
        session.call(request, QDBus::Block, static_cast<int>(timeout_.count()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

} // namespace hg
