#include "shells/sim/SimDesktop.hpp"

#include "menu/GremlinMenu.hpp"

#include <algorithm>

namespace hg::sim {

SimDesktop::SimDesktop(SimOutput& output) : out(output) {
    setTrusted(false);
    windows.onFront = [this](const FakeWindows::Window& window) {
        out.observe("window " + SimWindows::titleOf(window));
    };
    windows.onClosed = [this](const FakeWindows::Window& window) {
        out.observe("window closed " + SimWindows::titleOf(window));
    };
    application.onActivate = [this] { out.observe("activate"); };
    application.onTerminate = [this] {
        if (terminated_) {
            return;
        }
        if (app_) {
            app_->applicationWillTerminate();
        }
        terminated_ = true;
        out.observe("terminated");
    };
    accessibility.onPrompt = [this] { out.observe("prompt"); };
    eventTap.onInstalledChanged = [this](bool installed) {
        out.observe(installed ? "tap on" : "tap off");
    };
    loginItems.onCall = [this](FakeLoginItems::Call call) {
        out.observe(call == FakeLoginItems::Call::registerItem ? "login register"
                                                               : "login unregister");
    };
    unifiedLog.onLine = [this](const std::string& text) { out.observe("log " + text); };
    updater.onCheck = [this] { out.observe("update check"); };
    microphone.onSetMuted = [this](bool muted) {
        out.observe(muted ? "mic mute on" : "mic mute off");
    };
}

SimDesktop::~SimDesktop() {
    // The simulation has stopped: taking the application down (it refers to
    // the fakes, so it goes first) is not something the desktop saw.
    eventTap.onInstalledChanged = nullptr;
    windows.onClosed = nullptr;
    app_.reset();
}

void SimDesktop::launch() {
    app_ = std::make_unique<AppDelegate>(platform);
    app_->startUp();
}

void SimDesktop::setTrusted(bool trusted) {
    accessibility.setTrusted(trusted);
    eventTap.installable = trusted;
}

void SimDesktop::keyEvent(const TapEvent& event, const std::optional<LocalKeyEvent>& local) {
    const auto decision = eventTap.deliver(event);
    if (decision) {
        out.observe(*decision == TapDecision::remove ? "removed" : "passed");
        if (*decision == TapDecision::remove) {
            return;
        }
    }
    if (statusItemState.isOpen() || !local) {
        return;
    }
    localKeyMonitor.deliver(*local);
}

void SimDesktop::openMenu(bool option) {
    statusItemState.open(option ? std::optional<std::uint64_t>(GremlinMenu::optionKeyMask)
                                : std::optional<std::uint64_t>(0));
    timers.setPaused(true);
}

void SimDesktop::closeMenu() {
    statusItemState.close();
    timers.setPaused(false);
}

bool SimDesktop::pickMenu(const std::string& title) {
    if (!statusItemState.isOpen()) {
        return false;
    }
    // The pick closes the menu before the row's action runs.
    const auto& rows = statusItemState.menu().rows;
    const bool found = std::any_of(rows.begin(), rows.end(), [&](const MenuRow& row) {
        return row.enabled() && row.title == title;
    });
    if (!found) {
        return false;
    }
    timers.setPaused(false);
    return statusItemState.pick(title);
}

} // namespace hg::sim
