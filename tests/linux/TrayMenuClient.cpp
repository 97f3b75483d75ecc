#include "TrayMenuClient.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

namespace hg::test {

namespace {

const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
constexpr int callTimeoutMs = 5000;

// One (ia{sv}av) node of the layout: its id, its properties, its children.
struct Node {
    int id = 0;
    QVariantMap properties;
    std::vector<Node> children;
};

void readNode(const QDBusArgument& arg, Node& node) {
    arg.beginStructure();
    arg >> node.id >> node.properties;
    arg.beginArray();
    while (!arg.atEnd()) {
        QDBusVariant child;
        arg >> child;
        Node childNode;
        readNode(child.variant().value<QDBusArgument>(), childNode);
        node.children.push_back(std::move(childNode));
    }
    arg.endArray();
    arg.endStructure();
}

QDBusMessage call(const QString& service, const QString& path, const QString& method,
                  const QList<QVariant>& arguments) {
    QDBusMessage request = QDBusMessage::createMethodCall(service, path, menuInterface, method);
    request.setArguments(arguments);
    return QDBusConnection::sessionBus().call(request, QDBus::Block, callTimeoutMs);
}

} // namespace

TrayMenuClient::TrayMenuClient(QString service, QString menuPath)
    : service_(std::move(service)), menuPath_(std::move(menuPath)) {}

std::optional<std::vector<TrayMenuClient::Row>> TrayMenuClient::rows() const {
    const QDBusMessage reply = call(service_, menuPath_, QStringLiteral("GetLayout"),
                                    {QVariant(0), QVariant(-1), QVariant(QStringList())});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 2) {
        return std::nullopt;
    }
    Node root;
    readNode(reply.arguments().at(1).value<QDBusArgument>(), root);
    std::vector<Row> rows;
    for (const Node& child : root.children) {
        if (child.properties.value(QStringLiteral("type")).toString() ==
            QLatin1String("separator")) {
            continue;
        }
        rows.push_back(Row{child.id, child.properties.value(QStringLiteral("label")).toString(),
                           child.properties.value(QStringLiteral("enabled"), true).toBool()});
    }
    return rows;
}

bool TrayMenuClient::click(const QString& label) const {
    const auto all = rows();
    if (!all) {
        return false;
    }
    std::optional<int> id;
    for (const Row& row : *all) {
        if (row.label == label) {
            id = row.id;
        }
    }
    if (!id) {
        return false;
    }
    const QVariant noData = QVariant::fromValue(QDBusVariant(QVariant(0)));
    const QVariant now = QVariant::fromValue(0U);
    const QDBusMessage shown =
        call(service_, menuPath_, QStringLiteral("AboutToShow"), {QVariant(0)});
    const QDBusMessage clicked =
        call(service_, menuPath_, QStringLiteral("Event"),
             {QVariant(*id), QVariant(QStringLiteral("clicked")), noData, now});
    // A row that quits the program may leave no one to answer this.
    call(service_, menuPath_, QStringLiteral("Event"),
         {QVariant(0), QVariant(QStringLiteral("closed")), noData, now});
    return shown.type() == QDBusMessage::ReplyMessage &&
           clicked.type() == QDBusMessage::ReplyMessage;
}

} // namespace hg::test
