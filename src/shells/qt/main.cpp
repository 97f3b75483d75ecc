// The desktop program: a tray icon with its menu, the windows, and the
// global shortcut, built by the same application delegate as the simulator.
#include "app/AppDelegate.hpp"
#include "backends/posix/StdoutLineSink.hpp"
#include "shells/qt/DesktopPlatform.hpp"
#include "shells/qt/HelpAndVersion.hpp"
#include "shells/qt/QuitOnSignal.hpp"
#include "shells/qt/ScriptingClient.hpp"
#include "shells/qt/ScriptingService.hpp"
#include "shells/qt/TrayStatusItem.hpp"
#include "shells/qt/views/NamedImages.hpp"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QTimer>
#include <iostream>
#include <string>

int main(int argc, char* argv[]) {
    // `hushgremlin status` and its kin talk to the running program and end.
    if (hg::ScriptingClient::isCommand(argc, argv)) {
        return hg::ScriptingClient::run(argc, argv);
    }
    if (const auto status = hg::answerHelpOrVersion(argc, argv, std::cout)) {
        return *status;
    }
    QElapsedTimer sinceMain;
    sinceMain.start();

    QApplication app(argc, argv);
    // The settings live where these names put them:
    // ~/.config/HushGremlin/HushGremlin.conf.
    QCoreApplication::setOrganizationName(QStringLiteral("HushGremlin"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("hushgremlin.app"));
    QCoreApplication::setApplicationName(QStringLiteral("HushGremlin"));
    QCoreApplication::setApplicationVersion(QStringLiteral(HG_VERSION));
    // No display name: on X11 Qt would append it to every window title.
    QApplication::setWindowIcon(hg::views::namedIcon("AppIcon"));
    // A tray program: closing its last window does not end it.
    QApplication::setQuitOnLastWindowClosed(false);

    // One program per session: a second start hands over to the first.
    if (hg::ScriptingService::claimName() == hg::ScriptingService::Claim::taken) {
        hg::StdoutLineSink out;
        return hg::ScriptingClient::handOver(out);
    }

    hg::QuitOnSignal quitOnSignal;
    hg::DesktopPlatform desktop;
    hg::AppDelegate delegate(desktop.platform(), hg::AppDelegate::Departures::ofPrograms());
    hg::ScriptingService scripting(delegate.remoteControl(), desktop.platform().out);

    if (qEnvironmentVariableIsSet("HG_TRACE_STARTUP")) {
        desktop.tray().setShownCallback([&desktop, &sinceMain] {
            desktop.platform().out.line("startup: tray icon shown at " +
                                        std::to_string(QDateTime::currentMSecsSinceEpoch()) +
                                        " ms since the epoch, " +
                                        std::to_string(sinceMain.elapsed()) + " ms after main");
        });
    }
    // Every way of quitting (the Quit row, a signal, the session ending)
    // passes here once.
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &app,
                     [&delegate] { delegate.applicationWillTerminate(); });
    // Launching has finished once the event loop runs.
    QTimer::singleShot(0, &app, [&delegate] { delegate.startUp(); });
    const int status = QApplication::exec();
    // The windows' views refer to the delegate's objects: they go first.
    desktop.destroyWindows();
    return status;
}
