#pragma once

#include "core/Observable.hpp"
#include "ports/LineSink.hpp"

#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantMap>

namespace hg {

class RemoteControl;

// Where scripts find the running program on the session bus.
namespace scripting {
inline constexpr char serviceName[] = "app.hushgremlin.HushGremlin";
inline constexpr char objectPath[] = "/app/hushgremlin";
inline constexpr char interfaceName[] = "app.hushgremlin.HushGremlin";
// The errors of Mute and Unmute; their message is the line to show.
inline constexpr char noCallError[] = "app.hushgremlin.HushGremlin.Error.NoCall";
inline constexpr char refusedError[] = "app.hushgremlin.HushGremlin.Error.Refused";

// A call of `method` of the interface. It never starts the program: a client
// that starts it by asking would make "not running" impossible to tell.
[[nodiscard]] QDBusMessage methodCall(const QString& method);
// org.freedesktop.DBus.Properties' `Get` or `GetAll` for the interface (the
// property's name still to add for `Get`).
[[nodiscard]] QDBusMessage propertiesCall(const QString& method);
// The properties in a reply to GetAll, or in PropertiesChanged's second
// argument as QtDBus hands it over.
[[nodiscard]] QVariantMap propertiesOf(const QDBusMessage& reply);
[[nodiscard]] QVariantMap propertiesOf(const QVariant& argument);
} // namespace scripting

// The remote control on the session bus: the methods Toggle, Mute, Unmute,
// Press, Release, ShowPreferences and ShowDebugView; PressAt and ReleaseAt with the time the
// caller issued them (nanoseconds of CLOCK_MONOTONIC), Press and Release
// taking the time they arrive; the read-only properties Status (the shown
// status's case name, "onMute") and App (the app in a meeting, "" for none),
// announced with PropertiesChanged when they change, so that nobody polls.
// Mute and Unmute answer with an error when the call does not end in the
// asked state. Translates only: what each call does is the remote control's
// business. Session bus only. Main thread only.
class ScriptingService final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.hushgremlin.HushGremlin")
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QString App READ app)

public:
    enum class Claim { claimed, taken, noBus };

    // Takes the service name for this process, unless another one has it.
    // Call before building the program, so that a second start can hand over
    // to the first instead.
    [[nodiscard]] static Claim claimName();

    // Exports the object. Without a session bus says so in one line.
    ScriptingService(RemoteControl& remote, LineSink& out);
    ~ScriptingService() override;
    ScriptingService(const ScriptingService&) = delete;
    ScriptingService& operator=(const ScriptingService&) = delete;

    [[nodiscard]] QString status() const;
    [[nodiscard]] QString app();

public slots:
    void Toggle();
    void Mute();
    void Unmute();
    void Press();
    void Release();
    void PressAt(qint64 issuedAtNs);
    void ReleaseAt(qint64 issuedAtNs);
    void ShowPreferences();
    void ShowDebugView();

private:
    void statusMayChange();
    void setMuted(bool muted);

    RemoteControl& remote_;
    ObjectWillChange::Subscription subscription_;
    QString announced_;
    QString announcedApp_;
    bool exported_ = false;
    bool pending_ = false;
};

} // namespace hg
