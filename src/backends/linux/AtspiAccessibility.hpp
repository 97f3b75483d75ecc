#pragma once

#include "backends/linux/AtspiBus.hpp"
#include "backends/linux/AtspiSwitchWatch.hpp"
#include "backends/linux/AtspiTree.hpp"
#include "ports/Accessibility.hpp"

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
// connection belongs to that process; "AXMenuBar" is its shallowest menu bar
// below its windows (the one on screen; with several on screen, one that
// lists the menus of all, as an application has one menu bar elsewhere);
// "AXChildren" is GetChildren without the menu items a toolkit keeps hidden;
// "AXRole" is GetRole named as by axRoleName (menus and popup menus are
// "AXMenu", a menu bar's entries "AXMenuItem"); "AXTitle" is the Name
// property without padding; "AXPress" is the element's first
// action, refused for an item that is neither enabled nor sensitive. Failures
// are the AXErrors of AtspiErrors. Every call waits at most the time-out.
//
// Reads go through an AtspiTree: each application lookup starts a walk, which
// asks every object once and a whole level of the tree in one round trip.
//
// Trust: the accessibility bus is reachable, and either the desktop's
// accessibility switch (org.a11y.Status.IsEnabled) is on, or this program
// runs with QT_LINUX_ACCESSIBILITY_ALWAYS_ON set, the setup in which the user
// also starts the inspected applications with it so that they register
// without the switch. Asking with a prompt turns the switch on (applications
// started before that have to be restarted to appear); the answer is still
// the one from before, as the permission dialog's would be. The switch is
// read once and then followed by its change signal, which the main thread's
// event loop delivers.
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

    // Round trips and messages on the buses since construction, for
    // measurements.
    [[nodiscard]] std::uint64_t roundTrips() const { return bus_.roundTrips(); }
    [[nodiscard]] std::uint64_t messages() const { return bus_.messages(); }

private:
    // The element's failure when it cannot be asked anything, else 0.
    [[nodiscard]] AXError unusable(const AtspiElement& element) const;
    AXCopyResult children(const AtspiElement& element);
    AXCopyResult role(const AtspiElement& element);
    AXCopyResult title(const AtspiElement& element);
    AXCopyResult menuBar(const AtspiElement& element);
    AXError press(const AtspiElement& element);
    // After a read or action failed with `code`: an application that is
    // gone is looked up in the registry again next time.
    void forgetApplicationOnFailure(const AtspiElement& element, AXError code);
    // The applications in the registry; a nonzero code on failure.
    AXError applications(std::vector<AtspiObjectRef>& out);
    // Asks the bus, in one round trip, for the processes of the applications
    // whose process is not known yet.
    void learnProcesses(const std::vector<AtspiObjectRef>& applications);
    [[nodiscard]] std::optional<ProcessId> processOf(const QString& service) const;
    // Drops the remembered processes of applications no longer registered.
    void forgetUnregistered(const std::vector<AtspiObjectRef>& applications);

    AtspiBus bus_;
    AtspiTree tree_{bus_};
    bool alwaysOn_;
    AtspiSwitchWatch switch_;
    // How many actions the elements pressed so far offer: a later press of
    // the same element needs no question before the action.
    std::map<std::pair<QString, QString>, int> actionCounts_;
    std::uint64_t actionCountsGeneration_ = 0;
    // Unique bus names never come back within one bus's life and a
    // connection keeps its process, so this stays true until the bus is
    // opened anew.
    std::map<QString, ProcessId> processes_;
    std::uint64_t processesGeneration_ = 0;
    // The application of each process looked up on this bus.
    std::map<ProcessId, AtspiObjectRef> applicationOf_;
    std::uint64_t applicationsGeneration_ = 0;
};

} // namespace hg
