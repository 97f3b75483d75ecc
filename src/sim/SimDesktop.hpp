#pragma once

#include "app/AppDelegate.hpp"
#include "platform/Platform.hpp"
#include "platform/fake/FakeAccessibility.hpp"
#include "platform/fake/FakeApplication.hpp"
#include "platform/fake/FakeClock.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeFileSystem.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeLocalKeyMonitor.hpp"
#include "platform/fake/FakeLoginItems.hpp"
#include "platform/fake/FakeProcessRunner.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/fake/FakeStatusItem.hpp"
#include "platform/fake/FakeTimers.hpp"
#include "platform/fake/FakeUpdater.hpp"
#include "platform/fake/FakeUserDefaults.hpp"
#include "platform/fake/FakeWindows.hpp"
#include "sim/SimOutput.hpp"
#include "sim/SimStatusItem.hpp"
#include "sim/SimTuple.hpp"
#include "sim/SimWindows.hpp"
#include "sim/SimZoom.hpp"

#include <memory>
#include <optional>

namespace hg::sim {

// The simulated machine: every port backed by a fake, the two meeting
// applications, and the application itself once launched, composed exactly
// as the desktop program composes it. Traces what the application does to
// the machine.
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
    Platform platform{clock,          timers,          out,
                      defaults,       statusItem,      windows,
                      application,    accessibility,   runningApplications,
                      fileSystem,     processRunner,   eventTap,
                      keyboardLayout, localKeyMonitor, loginItems,
                      unifiedLog,     updater};
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
