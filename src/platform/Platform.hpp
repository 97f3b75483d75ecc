#pragma once

#include "platform/Accessibility.hpp"
#include "platform/Application.hpp"
#include "platform/Clock.hpp"
#include "platform/EventTap.hpp"
#include "platform/FileSystem.hpp"
#include "platform/KeyboardLayout.hpp"
#include "platform/LineSink.hpp"
#include "platform/LocalKeyMonitor.hpp"
#include "platform/LoginItems.hpp"
#include "platform/ProcessRunner.hpp"
#include "platform/RunningApplications.hpp"
#include "platform/StatusItem.hpp"
#include "platform/Timers.hpp"
#include "platform/Updater.hpp"
#include "platform/UserDefaults.hpp"
#include "platform/Windows.hpp"

namespace hg {

// Everything the application needs of the machine it runs on. The desktop
// program fills it with real backends, the simulator and the tests with fakes;
// the application is built from it the same way in every case. The referred
// objects outlive the application.
struct Platform {
    Clock& clock;
    Timers& timers;
    LineSink& out;
    UserDefaults& defaults;
    StatusItem& statusItem;
    Windows& windows;
    Application& application;
    Accessibility& accessibility;
    RunningApplications& runningApplications;
    FileSystem& fileSystem;
    ProcessRunner& processRunner;
    EventTap& eventTap;
    KeyboardLayout& keyboardLayout;
    LocalKeyMonitor& localKeyMonitor;
    LoginItems& loginItems;
    UnifiedLog& unifiedLog;
    Updater& updater;
};

} // namespace hg
