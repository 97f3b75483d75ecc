#pragma once

#include "ports/Accessibility.hpp"

#include <QString>
#include <span>

class QDBusError;

namespace hg {

// Failures that the accessibility backend finds itself, named like D-Bus
// errors so that they go through the same table as the bus's own.
namespace atspiFailure {
// The accessibility bus cannot be found or reached.
inline constexpr const char* busUnreachable = "hushgremlin.Atspi.BusUnreachable";
// The element of a process that has no application in the registry.
inline constexpr const char* noApplication = "hushgremlin.Atspi.NoApplication";
// An application without a menu bar under its windows.
inline constexpr const char* noMenuBar = "hushgremlin.Atspi.NoMenuBar";
// An attribute this backend does not model.
inline constexpr const char* unknownAttribute = "hushgremlin.Atspi.UnknownAttribute";
// An element that offers no action, or an action other than "AXPress".
inline constexpr const char* noAction = "hushgremlin.Atspi.NoAction";
// A menu item that is neither enabled nor sensitive. Qt would answer the press
// with true and do nothing, so it is refused before pressing; the code must
// not be actionUnsupported, which callers count as pressed.
inline constexpr const char* disabled = "hushgremlin.Atspi.Disabled";
// The application answered DoAction with false.
inline constexpr const char* actionRefused = "hushgremlin.Atspi.ActionRefused";
// A reply whose arguments are not of the documented types.
inline constexpr const char* badReply = "hushgremlin.Atspi.BadReply";
} // namespace atspiFailure

struct AtspiErrorMapping {
    const char* errorName;
    AXError code;
};

// The whole mapping, in table order. Names not in it map to ax::failure.
[[nodiscard]] std::span<const AtspiErrorMapping> atspiErrorTable();

// The AXError that stands for a failed call.
[[nodiscard]] AXError axErrorFor(const QString& errorName);
[[nodiscard]] AXError axErrorFor(const QDBusError& error);

} // namespace hg
