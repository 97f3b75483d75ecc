#pragma once

#include "core/Observable.hpp"
#include "ports/LineSink.hpp"

#include <QObject>
#include <QString>

namespace hg {

class RemoteControl;

// Where scripts find the running program on the session bus.
namespace scripting {
inline constexpr char serviceName[] = "app.hushgremlin.HushGremlin";
inline constexpr char objectPath[] = "/app/hushgremlin";
inline constexpr char interfaceName[] = "app.hushgremlin.HushGremlin";
} // namespace scripting

// The remote control on the session bus: the methods Toggle, Press, Release,
// ShowPreferences and ShowDebugView, and the read-only property Status (the shown status's
// case name, "onMute"), announced with PropertiesChanged when it changes.
// Translates only: what each call does is the remote control's business.
// Main thread only.
class ScriptingService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.hushgremlin.HushGremlin")
    Q_PROPERTY(QString Status READ status)

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

public slots:
    void Toggle();
    void Press();
    void Release();
    void ShowPreferences();
    void ShowDebugView();

private:
    void statusMayChange();

    RemoteControl& remote_;
    ObjectWillChange::Subscription subscription_;
    QString announced_;
    bool exported_ = false;
    bool pending_ = false;
};

} // namespace hg
