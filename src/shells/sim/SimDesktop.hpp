#pragma once

#include "app/AppDelegate.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeApplication.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeEventTap.hpp"
#include "backends/fake/FakeFileSystem.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeLocalKeyMonitor.hpp"
#include "backends/fake/FakeLoginItems.hpp"
#include "backends/fake/FakeMicrophone.hpp"
#include "backends/fake/FakeProcessRunner.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "backends/fake/FakeTimers.hpp"
#include "backends/fake/FakeUpdater.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "backends/fake/FakeWindows.hpp"
#include "ports/Platform.hpp"
#include "shells/sim/SimOutput.hpp"
#include "shells/sim/SimStatusItem.hpp"
#include "shells/sim/SimTuple.hpp"
#include "shells/sim/SimWindows.hpp"
#include "shells/sim/SimZoom.hpp"

#include <memory>
#include <optional>

namespace hg::sim {

// The simulated machine: every port backed by a fake, the two meeting
// applications and the default audio input, and the application itself once
// launched, composed exactly as the desktop program composes it. Traces what
// the application does to the machine.
class SimDesktop {
public:
    explicit SimDesktop(SimOutput& out);
    ~SimDesktop();
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;

    // Builds the application and runs its launch.
    void launch();
    [[nodiscard]] bool launched() const { return app_ != nullptr; }
    [[nodiscard]] bool terminated() const { return terminated_; }
    // Null before launch().
    [[nodiscard]] AppDelegate* app() const { return app_.get(); }

    // Accessibility trust; the event tap can be made only with it.
    void setTrusted(bool trusted);

    // A new process id for an application starting.
    [[nodiscard]] ProcessId nextPid() { return ++lastPid_; }

    // A keyboard event: to the tap when one is installed and enabled, then,
    // unless the tap removed it, to the open menu (which ignores it) or to
    // the application's key monitors (`local`, when the event is one they see).
    void keyEvent(const TapEvent& event, const std::optional<LocalKeyEvent>& local);

    // Menu tracking also pauses the application's timers.
    void openMenu(bool option);
    void closeMenu();
    // False when the menu is not open or has no such enabled row.
    bool pickMenu(const std::string& title);

    SimOutput& out;
    FakeClock clock;
    FakeTimers timers{clock};
    FakeUserDefaults defaults;
    FakeStatusItem statusItemState;
    SimStatusItem statusItem{statusItemState, out};
    FakeWindows windows;
    FakeApplication application;
    FakeAccessibility accessibility;
    FakeRunningApplications runningApplications;
    FakeFileSystem fileSystem;
    FakeProcessRunner processRunner;
    FakeEventTap eventTap;
    FakeKeyboardLayout keyboardLayout;
    FakeLocalKeyMonitor localKeyMonitor;
    FakeLoginItems loginItems;
    FakeUnifiedLog unifiedLog;
    FakeUpdater updater;
    FakeMicrophone microphone;
    Platform platform{clock,          timers,          out,
                      defaults,       statusItem,      windows,
                      application,    accessibility,   runningApplications,
                      fileSystem,     processRunner,   eventTap,
                      keyboardLayout, localKeyMonitor, loginItems,
                      unifiedLog,     updater,         microphone};
    SimZoom zoom{accessibility, runningApplications, out};
    SimTuple tuple{std::string(AppDelegate::tupleCLIPath), runningApplications, fileSystem,
                   processRunner, out};
    SimWindows simWindows{windows, out};

private:
    std::unique_ptr<AppDelegate> app_;
    bool terminated_ = false;
    ProcessId lastPid_ = 1000;
};

} // namespace hg::sim
