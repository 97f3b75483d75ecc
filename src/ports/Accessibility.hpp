#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hg {

using ProcessId = std::int32_t;

// AXError codes as the macOS headers define them; every backend maps its own
// failures onto these.
using AXError = std::int32_t;
namespace ax {
inline constexpr AXError success = 0;
inline constexpr AXError failure = -25200;
inline constexpr AXError illegalArgument = -25201;
inline constexpr AXError invalidUIElement = -25202;
inline constexpr AXError invalidUIElementObserver = -25203;
inline constexpr AXError cannotComplete = -25204;
inline constexpr AXError attributeUnsupported = -25205;
inline constexpr AXError actionUnsupported = -25206;
inline constexpr AXError notificationUnsupported = -25207;
inline constexpr AXError notImplemented = -25208;
inline constexpr AXError notificationAlreadyRegistered = -25209;
inline constexpr AXError notificationNotRegistered = -25210;
inline constexpr AXError apiDisabled = -25211;
inline constexpr AXError noValue = -25212;
inline constexpr AXError parameterizedAttributeUnsupported = -25213;
inline constexpr AXError notEnoughPrecision = -25214;
} // namespace ax

// An element of another application's user interface. Backends subclass it;
// the core only passes handles around. A handle keeps the element's platform
// reference alive for as long as someone holds it.
class AXElement {
public:
    virtual ~AXElement() = default;
};
using AXElementRef = std::shared_ptr<AXElement>;

// A copied attribute value: an element, a list of elements or a text.
// monostate stands for a value of any other kind.
using AXValue = std::variant<std::monostate, AXElementRef, std::vector<AXElementRef>, std::string>;

struct AXCopyResult {
    AXError error = ax::success; // nonzero: the read failed and `value` is empty
    AXValue value;
    // The application did not answer in time (`error` is then cannotComplete):
    // it is stopped or busy, which says nothing about what it shows.
    bool timedOut = false;
};

// The accessibility interface: trust, elements, attributes and actions.
// Calls block until the other application answers or the backend's time-out.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    // Whether this process may use the interface. With `prompt` the platform is
    // asked to offer its permission dialog (or the equivalent) when it may not.
    // Failure to ask reads as "not trusted".
    virtual bool isProcessTrusted(bool prompt) = 0;

    // The application element of a process; never null (the element of a
    // process that is gone fails its reads with invalidUIElement).
    virtual AXElementRef createApplication(ProcessId pid) = 0;

    // Copies an attribute ("AXMenuBar", "AXChildren", "AXRole", "AXTitle").
    // Failure: a nonzero AXError and no value.
    virtual AXCopyResult copyAttributeValue(const AXElementRef& element,
                                            std::string_view attribute) = 0;

    // Performs an action ("AXPress"). Returns 0 or the AXError of the failure.
    virtual AXError performAction(const AXElementRef& element, std::string_view action) = 0;
};

} // namespace hg
