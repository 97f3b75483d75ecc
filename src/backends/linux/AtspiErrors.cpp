#include "backends/linux/AtspiErrors.hpp"

#include <QDBusError>
#include <array>

namespace hg {

namespace {

// Every way a call on the accessibility bus can fail, and the AXError that the
// layers above see for it. This is the one place where that is decided.
constexpr std::array<AtspiErrorMapping, 21> table{{
    // The bus is missing, refuses us, or went away: accessibility is off.
    {atspiFailure::busUnreachable, ax::apiDisabled},
    {"org.freedesktop.DBus.Error.Disconnected", ax::apiDisabled},
    {"org.freedesktop.DBus.Error.NoServer", ax::apiDisabled},
    {"org.freedesktop.DBus.Error.AccessDenied", ax::apiDisabled},
    // The application or the object is gone: the element is no longer valid.
    {"org.freedesktop.DBus.Error.ServiceUnknown", ax::invalidUIElement},
    {"org.freedesktop.DBus.Error.NameHasNoOwner", ax::invalidUIElement},
    {"org.freedesktop.DBus.Error.UnknownObject", ax::invalidUIElement},
    {atspiFailure::noApplication, ax::invalidUIElement},
    // The application did not answer within the time-out (stopped or busy).
    {"org.freedesktop.DBus.Error.NoReply", ax::cannotComplete},
    {"org.freedesktop.DBus.Error.Timeout", ax::cannotComplete},
    {"org.freedesktop.DBus.Error.TimedOut", ax::cannotComplete},
    {atspiFailure::disabled, ax::cannotComplete},
    {atspiFailure::actionRefused, ax::cannotComplete},
    // The element does not implement what was asked of it.
    {"org.freedesktop.DBus.Error.UnknownInterface", ax::attributeUnsupported},
    {"org.freedesktop.DBus.Error.UnknownMethod", ax::attributeUnsupported},
    {"org.freedesktop.DBus.Error.UnknownProperty", ax::attributeUnsupported},
    {atspiFailure::unknownAttribute, ax::attributeUnsupported},
    {atspiFailure::noAction, ax::actionUnsupported},
    {atspiFailure::noMenuBar, ax::noValue},
    {atspiFailure::badReply, ax::failure},
    // Anything else, for instance org.freedesktop.DBus.Error.Failed.
    {"org.freedesktop.DBus.Error.Failed", ax::failure},
}};

} // namespace

std::span<const AtspiErrorMapping> atspiErrorTable() {
    return table;
}

AXError axErrorFor(const QString& errorName) {
    for (const auto& row : table) {
        if (errorName == QLatin1String(row.errorName)) {
            return row.code;
        }
    }
    return ax::failure;
}

AXError axErrorFor(const QDBusError& error) {
    if (!error.isValid()) {
        return ax::failure;
    }
    return axErrorFor(error.name());
}

} // namespace hg
