#pragma once

#include "core/Observable.hpp"
#include "ports/LoginItems.hpp"

namespace hg {

// Whether the program starts at login. Holds no setting of its own: the
// login-item service is asked afresh on every read, so changes made in the
// system's settings show at the next drawing. One instance serves every
// toggle on screen; they all observe its objectWillChange. Main thread only.
class LaunchAtLogin {
public:
    // Both must outlive this object.
    LaunchAtLogin(LoginItems& loginItems, UnifiedLog& log);
    LaunchAtLogin(const LaunchAtLogin&) = delete;
    LaunchAtLogin& operator=(const LaunchAtLogin&) = delete;

    [[nodiscard]] ObjectWillChange& objectWillChange() { return objectWillChange_; }

    // Only the enabled state counts as on; requires-approval reads as off.
    [[nodiscard]] bool isEnabled() const;

    // Announces the change, then registers (re-registering an enabled item) or
    // unregisters. A refusal is written to the unified log and otherwise
    // dropped; the next read shows what the service reports.
    void setEnabled(bool enabled);

private:
    LoginItems& loginItems_;
    UnifiedLog& log_;
    ObjectWillChange objectWillChange_;
};

} // namespace hg
