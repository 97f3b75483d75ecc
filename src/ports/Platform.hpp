#pragma once

#include "ports/Accessibility.hpp"
#include "ports/Application.hpp"
#include "ports/Clock.hpp"
#include "ports/EventTap.hpp"
#include "ports/FileSystem.hpp"
#include "ports/KeyboardLayout.hpp"
#include "ports/LineSink.hpp"
#include "ports/LocalKeyMonitor.hpp"
#include "ports/LoginItems.hpp"
#include "ports/Microphone.hpp"
#include "ports/ProcessRunner.hpp"
#include "ports/RunningApplications.hpp"
#include "ports/StatusItem.hpp"
#include "ports/Timers.hpp"
#include "ports/Updater.hpp"
#include "ports/UserDefaults.hpp"
#include "ports/Windows.hpp"

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
    Microphone& microphone;
};

} // namespace hg
