#pragma once

#include "ports/EventTap.hpp"
#include "ports/LineSink.hpp"
#include "ports/ShortcutSource.hpp"

#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>
#include <chrono>

class QDBusMessage;

namespace hg {

// The event tap of a Wayland session: the desktop's GlobalShortcuts portal
// (org.freedesktop.portal.GlobalShortcuts on the session bus).
//
// Wayland shows no program the keys of another, so there is nothing to tap.
// The portal instead runs one shortcut for us: the first install() registers
// the program under its application id (portals from 1.21 on ask host
// programs to; older ones lack the call, which is fine), opens one session
// and binds one shortcut, offering the stored shortcut as its preferred
// trigger. The desktop has the last word on the keys: it may ask the user, or
// keep what was chosen before. From then on the portal reports the
// shortcut's press (Activated, repeated while held: the repeats are dropped)
// and release (Deactivated); each is handed to the callback as the stored
// shortcut's own key events (ShortcutEvents), so the monitor matches them as
// it matches real keys.
//
// Every call carries a time-out, and so does every answer the portal owes; a
// refusal, an error or silence prints one line and leaves the shortcut dead,
// nothing else. remove() only stops the deliveries: the session stays, so a
// later install() does not make the desktop ask again. The session is closed
// with this object. Main thread only.
class PortalEventTap final : public QObject, public EventTap {
    Q_OBJECT

public:
    static constexpr char shortcutId[] = "push-to-talk";

    struct Options {
        QString appId = QStringLiteral("app.hushgremlin.HushGremlin");
        std::chrono::milliseconds callTimeout{5000};
        // How long the portal may take to answer, a person answering its
        // dialog included.
        std::chrono::milliseconds sessionTimeout{10000};
        std::chrono::milliseconds bindTimeout{300000};
    };

    // Whether the session bus has a portal with the GlobalShortcuts
    // interface; asks it once, within `timeout`.
    [[nodiscard]] static bool isOffered(std::chrono::milliseconds timeout);

    PortalEventTap(const ShortcutSource& shortcut, LineSink& out, Options options);
    PortalEventTap(const ShortcutSource& shortcut, LineSink& out)
        : PortalEventTap(shortcut, out, Options{}) {}
    ~PortalEventTap() override;
    PortalEventTap(const PortalEventTap&) = delete;
    PortalEventTap& operator=(const PortalEventTap&) = delete;

    // Starts the session on the first call; true, since the portal's answer
    // comes later (a failure then is a printed line).
    bool install(Callback callback) override;
    void setEnabled(bool enabled) override;
    void remove() override;
    // PC keyboards keep fn to themselves.
    [[nodiscard]] bool seesFunctionKey() const override { return false; }

private slots:
    void response(uint code, const QVariantMap& results);
    void activated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp,
                   const QVariantMap& options);
    void deactivated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp,
                     const QVariantMap& options);

private:
    enum class Step { idle, registering, creatingSession, binding, bound, failed };

    void createSession();
    void bindShortcut();
    // Calls a portal method whose answer comes as a Response on the request
    // object named by `token`, and waits for that answer up to `limit`.
    void request(const QString& method, const QList<QVariant>& arguments, const QString& token,
                 std::chrono::milliseconds limit);
    void watchRequest(const QString& path);
    void fail(const std::string& why);
    void deliver(bool press);

    const ShortcutSource& shortcut_;
    LineSink& out_;
    Options options_;
    Callback callback_;
    Step step_ = Step::idle;
    QString requestPath_;
    QString sessionPath_;
    QTimer answerTimer_;
    bool installed_ = false;
    bool enabled_ = false;
    bool held_ = false;
};

} // namespace hg
