#include "backends/linux/AtspiBus.hpp"

#include "backends/linux/AtspiErrors.hpp"
#include "backends/linux/AtspiNames.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <atomic>

namespace hg {

namespace {

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
    const QDBusMessage request =
        QDBusMessage::createMethodCall(atspiName::launcherService, atspiName::launcherPath,
                                       atspiName::launcherService, QStringLiteral("GetAddress"));
    ++roundTrips_;
    ++messages_;
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
    ++messages_;
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
    return std::move(callAll({AtspiRequest{service, path, interface, method, arguments}}).front());
}

std::vector<AtspiReply> AtspiBus::callAll(const std::vector<AtspiRequest>& requests) {
    std::vector<AtspiReply> replies;
    replies.reserve(requests.size());
    if (requests.empty()) {
        return replies;
    }
    if (!connect()) {
        replies.assign(requests.size(),
                       failed(axErrorFor(QLatin1String(atspiFailure::busUnreachable))));
        return replies;
    }
    QDBusConnection connection(connectionName_);
    std::vector<QDBusPendingCall> pending;
    pending.reserve(requests.size());
    for (const auto& request : requests) {
        QDBusMessage message = QDBusMessage::createMethodCall(request.service, request.path,
                                                              request.interface, request.method);
        message.setArguments(request.arguments);
        pending.push_back(connection.asyncCall(message, static_cast<int>(timeout_.count())));
    }
    ++roundTrips_;
    messages_ += requests.size();
    // Waiting blocks in QtDBus's own thread: no event of ours runs meanwhile.
    for (auto& call : pending) {
        call.waitForFinished();
        const QDBusMessage reply = call.reply();
        if (reply.type() == QDBusMessage::ReplyMessage) {
            replies.push_back(AtspiReply{ax::success, reply.arguments()});
        } else if (reply.type() == QDBusMessage::ErrorMessage) {
            replies.push_back(failed(axErrorFor(reply.errorName())));
        } else {
            replies.push_back(failed(axErrorFor(QLatin1String(atspiFailure::badReply))));
        }
    }
    if (!connection.isConnected()) {
        drop();
    }
    return replies;
}

AtspiRequest AtspiBus::propertyRequest(const QString& service, const QString& path,
                                       const QString& interface, const QString& name) {
    return AtspiRequest{service,
                        path,
                        atspiName::propertiesInterface,
                        QStringLiteral("Get"),
                        {QVariant(interface), QVariant(name)}};
}

AtspiReply AtspiBus::propertyValue(AtspiReply reply) {
    if (reply.error != ax::success) {
        return reply;
    }
    if (reply.arguments.size() != 1 || !reply.arguments.front().canConvert<QDBusVariant>()) {
        return failed(axErrorFor(QLatin1String(atspiFailure::badReply)));
    }
    const QVariant value = reply.arguments.front().value<QDBusVariant>().variant();
    return AtspiReply{ax::success, {value}};
}

AtspiReply AtspiBus::property(const QString& service, const QString& path, const QString& interface,
                              const QString& name) {
    const AtspiRequest request = propertyRequest(service, path, interface, name);
    return propertyValue(
        call(request.service, request.path, request.interface, request.method, request.arguments));
}

std::optional<bool> AtspiBus::isEnabled() {
    QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) {
        return std::nullopt;
    }
    QDBusMessage request =
        QDBusMessage::createMethodCall(atspiName::launcherService, atspiName::launcherPath,
                                       atspiName::propertiesInterface, QStringLiteral("Get"));
    request.setArguments({atspiName::statusInterface, atspiName::isEnabled});
    ++roundTrips_;
    ++messages_;
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
    QDBusMessage request =
        QDBusMessage::createMethodCall(atspiName::launcherService, atspiName::launcherPath,
                                       atspiName::propertiesInterface, QStringLiteral("Set"));
    request.setArguments({atspiName::statusInterface, atspiName::isEnabled,
                          QVariant::fromValue(QDBusVariant(enabled))});
    ++roundTrips_;
    ++messages_;
    const QDBusMessage reply =
        session.call(request, QDBus::Block, static_cast<int>(timeout_.count()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

} // namespace hg
