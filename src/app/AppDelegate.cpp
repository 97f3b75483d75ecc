#include "app/AppDelegate.hpp"

#include "app/LaunchAtLogin.hpp"
#include "app/RemoteControl.hpp"
#include "app/WindowTable.hpp"
#include "apps/MicrophoneMeetingApp.hpp"
#include "apps/TupleMeetingApp.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "core/UserData.hpp"
#include "core/UserPrefs.hpp"
#include "core/Watcher.hpp"
#include "hotkey/DoubleTap.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/GlobeKeyNote.hpp"
#include "hotkey/HotkeyRecorder.hpp"
#include "menu/GremlinMenu.hpp"

namespace hg {

AppDelegate::AppDelegate(Platform& platform)
    : platform_(platform), remoteControl_(std::make_unique<RemoteControl>(*this)),
      self_(std::make_shared<AppDelegate*>(this)) {}

AppDelegate::~AppDelegate() = default;

std::string AppDelegate::applicationVersion() {
#ifdef HG_VERSION
    const std::string_view version = HG_VERSION;
    if (!version.empty()) {
        return std::string(version);
    }
#endif
    return "?";
}

void AppDelegate::startUp() {
    const std::weak_ptr<AppDelegate*> weakSelf = self_;
    platform_.updater.start([weakSelf] {
        if (const auto self = weakSelf.lock()) {
            (*self)->updaterDidFindValidUpdate();
        }
    });

    gremlinBarItem_ = std::make_unique<GremlinMenu>(
        platform_.statusItem, GremlinMenuCallbacks{
                                  .toggle = [this] { userData_->toggleMute(); },
                                  .prefs = [this] { showPrefsWindow(); },
                                  .axErr = [this] { handleAXError(); },
                                  .update = [this] { platform_.updater.checkForUpdates(); },
                                  .quit = [this] { platform_.application.terminate(); },
                                  .debugView = [this] { showDebugWindow(); },
                                  .activeAppName = [this] { return activeAppName(); },
                              });

    userData_ = std::make_unique<UserData>(*gremlinBarItem_, platform_.clock, platform_.out);
    remoteControl_->watch(*userData_);

    const bool trusted = platform_.accessibility.isProcessTrusted(false);
    userData_->setHasAXAccess(trusted);
    userData_->recordHistory();
    if (!trusted) {
        showAXSetupWindow();
    }

    // Without trust the tap cannot be made yet; axChanged() installs it later.
    setupBinding();

    meetingApps_ = {
        std::make_shared<ZoomMeetingApp>(platform_.accessibility, platform_.runningApplications,
                                         platform_.out),
        std::make_shared<TupleMeetingApp>(std::string(tupleCLIPath), platform_.runningApplications,
                                          platform_.fileSystem, platform_.processRunner,
                                          platform_.out),
    };

    watcher_ = std::make_unique<Watcher>(
        *userData_, meetingApps_, [this](bool hasAX) { axChanged(hasAX); },
        [this](MeetingApp& app) { showSetupWindow(app); }, platform_.accessibility,
        platform_.defaults, platform_.timers, platform_.out);
    // Any other call app, through the system's default input: last, and only
    // while the user has asked for it.
    watcher_->addOptionalApp(
        std::string(UserPrefs::microphoneKey),
        std::make_shared<MicrophoneMeetingApp>(platform_.microphone, platform_.out));
    watcher_->start();
    askForAShortcutOnce();
}

void AppDelegate::askForAShortcutOnce() {
    UserDefaults& defaults = platform_.defaults;
    if (platform_.eventTap.seesFunctionKey() || defaults.objectForKey(Hotkey::defaultsKey) ||
        defaults.boolForKey(askedForShortcutKey)) {
        return;
    }
    defaults.setObject(askedForShortcutKey, true);
    showPrefsWindow(std::string(noFunctionKeyNotice));
    if (!hotkeyRecorder_->isRecording()) {
        hotkeyRecorder_->click();
    }
}

void AppDelegate::applicationWillTerminate() {
    platform_.out.line("Goodbye cruel world!");
}

void AppDelegate::setupBinding() {
    platform_.out.line("setup binding...");

    // One detector shared by press and release, so the release can tell a
    // completed double tap from a hold.
    doubleTap_ = std::make_shared<DoubleTap>(platform_.clock, platform_.out);
    auto monitor = std::make_unique<GlobalHotkeyMonitor>(platform_.eventTap, platform_.defaults,
                                                         platform_.out);
    monitor->onDown = [this] { shortcutDown(); };
    monitor->onUp = [this] { shortcutUp(); };
    monitor->isTrusted = [&accessibility = platform_.accessibility] {
        return accessibility.isProcessTrusted(false);
    };
    monitor->start();
    hotkeyMonitor_ = std::move(monitor);

    platform_.out.line(std::string("Do we have a monitor: ") + " " +
                       (hotkeyMonitor_ ? "YES" : "NO"));
}

void AppDelegate::shortcutDown() {
    if (!userData_ || !doubleTap_) {
        return;
    }
    doubleTap_->down();
    userData_->hotkeyDown();
}

void AppDelegate::shortcutUp() {
    if (!userData_ || !doubleTap_) {
        return;
    }
    doubleTap_->up();
    if (doubleTap_->state() == DoubleTap::State::doubleTapped) {
        // The second release leaves the toggle of the second press standing.
        doubleTap_->reset();
        return;
    }
    userData_->hotkeyUp();
}

void AppDelegate::shortcutHoldDropped() {
    if (doubleTap_) {
        doubleTap_->reset();
    }
}

void AppDelegate::axChanged(bool hasAX) {
    platform_.out.line(std::string("AX ACQUIRED ") + (hasAX ? "true" : "false"));
    if (hasAX) {
        if (!hotkeyMonitor_) {
            platform_.out.line("configure event tap first time");
            setupBinding();
        } else {
            platform_.out.line("reset event tap");
            hotkeyMonitor_->start();
        }
    } else if (hotkeyMonitor_) {
        platform_.out.line("Del evvent tap");
        hotkeyMonitor_->stop();
    }
}

void AppDelegate::handleAXError() {
    if (!platform_.accessibility.isProcessTrusted(false)) {
        showAXSetupWindow();
        return;
    }
    for (const auto& app : meetingApps_) {
        if (app->needsSetup()) {
            showSetupWindow(*app);
            return;
        }
    }
}

void AppDelegate::updaterDidFindValidUpdate() {
    if (gremlinBarItem_) {
        gremlinBarItem_->setHasUpdate(true);
    }
}

std::string AppDelegate::activeAppName() const {
    if (userData_ && userData_->activeApp()) {
        return userData_->activeApp()->name();
    }
    return {};
}

void AppDelegate::bringForward(WindowId id, bool activate) {
    if (activate) {
        platform_.application.activate();
    }
    platform_.windows.makeKeyAndOrderFront(id);
}

void AppDelegate::showAXSetupWindow() {
    if (!axSetupWindow_) {
        const std::weak_ptr<AppDelegate*> weakSelf = self_;
        Accessibility& accessibility = platform_.accessibility;
        AccessibilitySetupContent content{
            [weakSelf, &accessibility] {
                (void)accessibility.isProcessTrusted(true);
                if (const auto self = weakSelf.lock(); self && (*self)->axSetupWindow_) {
                    (*self)->platform_.windows.close(*(*self)->axSetupWindow_);
                }
            },
            globeKeyNote(Hotkey::load(platform_.defaults), platform_.keyboardLayout).value_or("")};
        axSetupWindow_ = platform_.windows.create(
            windowtable::accessibilitySetup.description(std::move(content)));
    }
    bringForward(*axSetupWindow_);
}

void AppDelegate::showSetupWindow(MeetingApp& app) {
    const std::string name = app.name();
    auto it = setupWindows_.find(name);
    if (it == setupWindows_.end()) {
        // The window's id is known only once it is built; the close action
        // reads it then, and does nothing for a window that was never made.
        auto id = std::make_shared<WindowId>(0);
        Windows& windows = platform_.windows;
        AppSetupContent content{app.makeSetupView([id, &windows] {
            if (*id != 0) {
                windows.close(*id);
            }
        })};
        auto description =
            windowtable::appSetup.description(std::move(content), app.setupWindowTitle());
        description.frameAutosaveName = name + std::string(windowtable::appSetupAutosaveSuffix);
        *id = platform_.windows.create(std::move(description));
        it = setupWindows_.emplace(name, *id).first;
    }
    bringForward(it->second);
}

void AppDelegate::showPrefsWindow(std::string notice) {
    if (!prefsWindow_) {
        Updater& updater = platform_.updater;
        userPrefs_ = std::make_unique<UserPrefs>(
            platform_.defaults, [&updater] { updater.checkForUpdates(); }, updater.offReason());
        hotkeyRecorder_ = std::make_unique<HotkeyRecorder>(
            platform_.defaults, platform_.keyboardLayout, platform_.localKeyMonitor);
        launchAtLogin_ =
            std::make_unique<LaunchAtLogin>(platform_.loginItems, platform_.unifiedLog);
        const std::weak_ptr<AppDelegate*> weakSelf = self_;
        PreferencesContent content{userPrefs_.get(), hotkeyRecorder_.get(), launchAtLogin_.get(),
                                   [weakSelf] {
                                       if (const auto self = weakSelf.lock()) {
                                           (*self)->showAboutWindow();
                                       }
                                   },
                                   std::move(notice)};
        prefsWindow_ =
            platform_.windows.create(windowtable::preferences.description(std::move(content)));
    }
    bringForward(*prefsWindow_);
}

void AppDelegate::showAboutWindow() {
    if (!aboutWindow_) {
        aboutWindow_ = platform_.windows.create(windowtable::about.description(
            AboutContent{platform_.application.packageVersion().value_or(applicationVersion())}));
    }
    bringForward(*aboutWindow_);
}

void AppDelegate::showDebugWindow() {
    if (!debugWindow_) {
        debugWindow_ =
            platform_.windows.create(windowtable::debug.description(DebugContent{userData_.get()}));
    }
    bringForward(*debugWindow_, false);
}

} // namespace hg
