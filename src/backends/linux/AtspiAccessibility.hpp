#pragma once

#include "ports/Accessibility.hpp"
#include "backends/linux/AtspiBus.hpp"

#include <QString>
#include <chrono>
#include <map>
#include <optional>
#include <vector>

namespace hg {

class AtspiElement;
struct AtspiObjectRef;

// The accessibility port over AT-SPI 2 (the accessibility bus, with QtDBus).
//
// Elements are AtspiElement handles (bus name + object path), always found by
// walking: the application of a process is the registry's child whose bus
// connection belongs to that process; "AXMenuBar" is the first menu bar among
// the children of its windows; "AXChildren" is GetChildren; "AXRole" is
// GetRole named as by axRoleName (menus and popup menus are "AXMenu");
// "AXTitle" is the Name property; "AXPress" is the element's first action,
// refused for an item that is neither enabled nor sensitive. Failures are the
// AXErrors of AtspiErrors. Every call waits at most the time-out.
//
// Trust: the accessibility bus is reachable, and either the desktop's
// accessibility switch (org.a11y.Status.IsEnabled) is on, or this program
// runs with QT_LINUX_ACCESSIBILITY_ALWAYS_ON set, the setup in which the user
// also starts the inspected applications with it so that they register
// without the switch. Asking with a prompt turns the switch on (applications
// started before that have to be restarted to appear); the answer is still
// the one from before, as the permission dialog's would be.
//
// Main thread only; blocking calls, no event loop runs inside them.
class AtspiAccessibility final : public Accessibility {
public:
    struct Options {
        std::chrono::milliseconds timeout = atspiCallTimeout;
        // Defaults to whether QT_LINUX_ACCESSIBILITY_ALWAYS_ON is set.
        std::optional<bool> alwaysOn{};
    };

    AtspiAccessibility();
    explicit AtspiAccessibility(Options options);

    bool isProcessTrusted(bool prompt) override;
    AXElementRef createApplication(ProcessId pid) override;
    AXCopyResult copyAttributeValue(const AXElementRef& element,
                                    std::string_view attribute) override;
    AXError performAction(const AXElementRef& element, std::string_view action) override;

    // The processes of the applications registered now, in registry order;
    // empty when the bus cannot be reached.
    std::vector<ProcessId> registeredProcessIds();

    // Messages sent and waited for since construction, for measurements.
    [[nodiscard]] std::uint64_t roundTrips() const { return bus_.roundTrips(); }

private:
    // The element's failure when it cannot be asked anything, else 0.
    [[nodiscard]] AXError unusable(const AtspiElement& element) const;
    AXCopyResult children(const AtspiElement& element);
    AXCopyResult role(const AtspiElement& element);
    AXCopyResult title(const AtspiElement& element);
    AXCopyResult menuBar(const AtspiElement& element);
    // GetChildren as references; a nonzero code on failure.
    AXError childRefs(const QString& service, const QString& path,
                      std::vector<AtspiObjectRef>& out);
    AXError roleNumber(const QString& service, const QString& path, std::uint32_t& out);
    std::optional<ProcessId> processOf(const QString& service);
    // Drops the remembered processes of applications no longer registered.
    void forgetUnregistered(const std::vector<AtspiObjectRef>& applications);

    AtspiBus bus_;
    bool alwaysOn_;
    // Unique bus names never come back within one bus's life and a
    // connection keeps its process, so this stays true until the bus is
    // opened anew.
    std::map<QString, ProcessId> processes_;
    std::uint64_t processesGeneration_ = 0;
};

} // namespace hg
