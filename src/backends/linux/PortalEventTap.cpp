#include "backends/linux/PortalEventTap.hpp"

#include "backends/linux/XdgShortcutTrigger.hpp"
#include "ports/ShortcutEvents.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace hg::portal {

// One shortcut as the portal takes and gives them: (sa{sv}).
struct Shortcut {
    QString id;
    QVariantMap properties;
};

} // namespace hg::portal

Q_DECLARE_METATYPE(hg::portal::Shortcut)

namespace hg::portal {

QDBusArgument& operator<<(QDBusArgument& argument, const Shortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Shortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace hg::portal

namespace hg {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString desktopPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

int milliseconds(std::chrono::milliseconds duration) {
    return static_cast<int>(duration.count());
}

QDBusMessage portalCall(const QString& interface, const QString& method) {
    return QDBusMessage::createMethodCall(service, desktopPath, interface, method);
}

// What the desktop calls the keys it chose, when it says.
QString triggerDescription(const QVariant& shortcuts) {
    const auto argument = shortcuts.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a(sa{sv})")) {
        return {};
    }
    for (const auto& shortcut : qdbus_cast<QList<portal::Shortcut>>(argument)) {
        if (shortcut.id == QLatin1String(PortalEventTap::shortcutId)) {
            return shortcut.properties.value(QStringLiteral("trigger_description")).toString();
        }
    }
    return {};
}

} // namespace

bool PortalEventTap::isOffered(std::chrono::milliseconds timeout) {
    QDBusMessage get =
        portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << shortcutsInterface << QStringLiteral("version");
    const QDBusMessage reply =
        QDBusConnection::sessionBus().call(get, QDBus::Block, milliseconds(timeout));
    return reply.type() == QDBusMessage::ReplyMessage &&
           reply.arguments().value(0).value<QDBusVariant>().variant().typeId() == QMetaType::UInt;
}

PortalEventTap::PortalEventTap(const ShortcutSource& shortcut, LineSink& out, Options options)
    : shortcut_(shortcut), out_(out), options_(std::move(options)) {
    qDBusRegisterMetaType<portal::Shortcut>();
    qDBusRegisterMetaType<QList<portal::Shortcut>>();
    answerTimer_.setSingleShot(true);
    connect(&answerTimer_, &QTimer::timeout, this, [this] { fail("did not answer"); });
}

PortalEventTap::~PortalEventTap() {
    if (!sessionPath_.isEmpty()) {
        QDBusMessage close = QDBusMessage::createMethodCall(
            service, sessionPath_, QStringLiteral("org.freedesktop.portal.Session"),
            QStringLiteral("Close"));
        QDBusConnection::sessionBus().send(close);
    }
}

bool PortalEventTap::install(Callback callback) {
    callback_ = std::move(callback);
    installed_ = true;
    enabled_ = true;
    if (step_ != Step::idle) {
        return true;
    }
    // Portals from 1.21 on know a host program only once it says who it is;
    // older ones have no such call. Either answer leads on.
    step_ = Step::registering;
    QDBusMessage reg = portalCall(QStringLiteral("org.freedesktop.host.portal.Registry"),
                                  QStringLiteral("Register"));
    reg << options_.appId << QVariantMap();
    auto* watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(reg, milliseconds(options_.callTimeout)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* call) {
                call->deleteLater();
                createSession();
            });
    return true;
}

void PortalEventTap::setEnabled(bool enabled) {
    enabled_ = installed_ && enabled;
}

void PortalEventTap::remove() {
    installed_ = false;
    enabled_ = false;
    callback_ = nullptr;
}

void PortalEventTap::createSession() {
    step_ = Step::creatingSession;
    const QVariantMap options{
        {QStringLiteral("handle_token"), QStringLiteral("hushgremlin_session_request")},
        {QStringLiteral("session_handle_token"), QStringLiteral("hushgremlin")}};
    request(QStringLiteral("CreateSession"), {options},
            QStringLiteral("hushgremlin_session_request"), options_.sessionTimeout);
}

void PortalEventTap::bindShortcut() {
    step_ = Step::binding;
    QVariantMap properties{{QStringLiteral("description"),
                            QStringLiteral("Push to talk (a double tap switches mute)")}};
    if (const auto trigger = XdgShortcutTrigger::of(shortcut_.current())) {
        properties.insert(QStringLiteral("preferred_trigger"), QString::fromStdString(*trigger));
    }
    const QList<portal::Shortcut> shortcuts{{QLatin1String(shortcutId), properties}};
    const QString token = QStringLiteral("hushgremlin_bind_request");
    request(QStringLiteral("BindShortcuts"),
            {QVariant::fromValue(QDBusObjectPath(sessionPath_)), QVariant::fromValue(shortcuts),
             QString(), QVariantMap{{QStringLiteral("handle_token"), token}}},
            token, options_.bindTimeout);
}

void PortalEventTap::request(const QString& method, const QList<QVariant>& arguments,
                             const QString& token, std::chrono::milliseconds limit) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    // The request's object path is known in advance: watching it before the
    // call leaves no gap for a quick answer to fall into.
    QString sender = bus.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    watchRequest(QStringLiteral("/org/freedesktop/portal/desktop/request/") + sender +
                 QLatin1Char('/') + token);
    QDBusMessage call = portalCall(shortcutsInterface, method);
    call.setArguments(arguments);
    answerTimer_.start(limit);
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call, milliseconds(options_.callTimeout)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, step = step_](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (step_ != step) {
                    return;
                }
                const QDBusPendingReply<QDBusObjectPath> reply = *finished;
                if (reply.isError()) {
                    fail("failed (" + reply.error().name().toStdString() + ")");
                } else if (reply.value().path() != requestPath_) {
                    watchRequest(reply.value().path());
                }
            });
}

void PortalEventTap::watchRequest(const QString& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QString interface = QStringLiteral("org.freedesktop.portal.Request");
    if (!requestPath_.isEmpty()) {
        bus.disconnect(service, requestPath_, interface, QStringLiteral("Response"), this,
                       SLOT(response(uint, QVariantMap)));
    }
    requestPath_ = path;
    if (!path.isEmpty()) {
        bus.connect(service, path, interface, QStringLiteral("Response"), this,
                    SLOT(response(uint, QVariantMap)));
    }
}

void PortalEventTap::response(uint code, const QVariantMap& results) {
    if (step_ != Step::creatingSession && step_ != Step::binding) {
        return;
    }
    answerTimer_.stop();
    watchRequest({});
    if (code != 0) {
        fail(code == 1 ? "was turned down" : "ended the request");
        return;
    }
    if (step_ == Step::creatingSession) {
        const QVariant handle = results.value(QStringLiteral("session_handle"));
        sessionPath_ = handle.canConvert<QDBusObjectPath>() ? handle.value<QDBusObjectPath>().path()
                                                            : handle.toString();
        if (!sessionPath_.startsWith(QLatin1Char('/'))) {
            sessionPath_.clear();
            fail("gave no session");
            return;
        }
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.connect(service, desktopPath, shortcutsInterface, QStringLiteral("Activated"), this,
                    SLOT(activated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
        bus.connect(service, desktopPath, shortcutsInterface, QStringLiteral("Deactivated"), this,
                    SLOT(deactivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
        bindShortcut();
        return;
    }
    step_ = Step::bound;
    const QString keys = triggerDescription(results.value(QStringLiteral("shortcuts")));
    out_.line("The desktop's shortcut portal runs the shortcut" +
              (keys.isEmpty() ? std::string() : ": " + keys.toStdString()));
}

void PortalEventTap::fail(const std::string& why) {
    if (step_ == Step::failed || step_ == Step::bound) {
        return;
    }
    step_ = Step::failed;
    answerTimer_.stop();
    watchRequest({});
    out_.line("The desktop's shortcut portal " + why + "; the shortcut does not work");
}

void PortalEventTap::activated(const QDBusObjectPath& session, const QString& id, qulonglong,
                               const QVariantMap&) {
    // Repeats while held are dropped, as a tap drops a key's auto-repeat.
    if (session.path() != sessionPath_ || id != QLatin1String(shortcutId) || held_) {
        return;
    }
    held_ = true;
    deliver(true);
}

void PortalEventTap::deactivated(const QDBusObjectPath& session, const QString& id, qulonglong,
                                 const QVariantMap&) {
    if (session.path() != sessionPath_ || id != QLatin1String(shortcutId) || !held_) {
        return;
    }
    held_ = false;
    deliver(false);
}

void PortalEventTap::deliver(bool press) {
    if (!enabled_ || !callback_) {
        return;
    }
    if (const auto events = ShortcutEvents::of(shortcut_.current())) {
        callback_(press ? events->press : events->release);
    }
}

} // namespace hg
