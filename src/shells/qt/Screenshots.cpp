// Renders the tray menu for every status, the tray icons, and every window
// to PNG files, on whatever platform Qt runs on (the offscreen one in
// scripts/screenshots). Usage: hushgremlin-screenshots OUTPUT_FOLDER
#include "app/LaunchAtLogin.hpp"
#include "app/WindowTable.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeLoginItems.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "core/UserData.hpp"
#include "core/UserPrefs.hpp"
#include "hotkey/HotkeyRecorder.hpp"
#include "menu/GremlinMenu.hpp"
#include "shells/qt/QtApplication.hpp"
#include "shells/qt/QtLocalKeyMonitor.hpp"
#include "shells/qt/QtWindows.hpp"
#include "shells/qt/TrayStatusItem.hpp"
#include "shells/qt/views/NamedImages.hpp"

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QPainter>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>

namespace {

using namespace hg;

bool save(const QPixmap& pixmap, const QDir& folder, const QString& name) {
    const QString path = folder.filePath(name);
    if (!pixmap.save(path)) {
        std::fprintf(stderr, "could not write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s\n", qPrintable(path));
    return true;
}

// The menu as it opens under the tray icon: the icon in a strip of panel
// above it.
QPixmap menuShot(TrayStatusItem& tray) {
    tray.menu().popup(QPoint(40, 40));
    const QPixmap menu = tray.menu().grab();
    tray.menu().hide();
    const int panel = 28;
    QPixmap shot(std::max(menu.width(), 80), menu.height() + panel);
    shot.fill(QColor(0x30, 0x30, 0x34));
    QPainter painter(&shot);
    painter.drawPixmap(6, 3, tray.icon().pixmap(22, 22));
    painter.drawPixmap(0, panel, menu);
    return shot;
}

// Every status icon at tray sizes, on a light and a dark panel.
QPixmap iconSheet() {
    const char* names[] = {"NoMeetingIcon", "OnMuteIcon", "OffMuteIcon", "ErrorIcon",
                           "SideEyeIcon"};
    const int sizes[] = {16, 22, 28, 64};
    const int cell = 72;
    QPixmap sheet(cell * 5, cell * 4 * 2);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int dark = 0; dark < 2; ++dark) {
        painter.fillRect(0, dark * cell * 4, sheet.width(), cell * 4,
                         dark != 0 ? QColor(0x22, 0x22, 0x26) : QColor(0xee, 0xee, 0xf0));
        for (int i = 0; i < 5; ++i) {
            for (int s = 0; s < 4; ++s) {
                const int size = sizes[s];
                const QPixmap icon = views::namedIcon(names[i]).pixmap(size, size);
                painter.drawPixmap(i * cell + (cell - size) / 2,
                                   (dark * 4 + s) * cell + (cell - size) / 2, icon);
            }
        }
    }
    return sheet;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: hushgremlin-screenshots OUTPUT_FOLDER\n");
        return 2;
    }
    QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "could not make %s\n", argv[1]);
        return 1;
    }
    bool ok = true;

    BufferLineSink out;
    Qt::KeyboardModifiers held = Qt::NoModifier;
    TrayStatusItem tray(out, {.modifiers = [&held] { return held; }, .exported = false});
    GremlinMenu menu(tray, {});
    const std::pair<MeetingStatus, const char*> statuses[] = {
        {MeetingStatus::noMeeting, "menu-noMeeting.png"},
        {MeetingStatus::onMute, "menu-onMute.png"},
        {MeetingStatus::offMute, "menu-offMute.png"},
        {MeetingStatus::setupError, "menu-setupError.png"},
        {MeetingStatus::error, "menu-error.png"},
    };
    for (const auto& [status, file] : statuses) {
        menu.updateMenu(status);
        ok = save(menuShot(tray), folder, QString::fromLatin1(file)) && ok;
    }
    menu.setHasUpdate(true);
    menu.updateMenu(MeetingStatus::onMute);
    held = Qt::AltModifier;
    ok = save(menuShot(tray), folder, QStringLiteral("menu-option-with-update.png")) && ok;
    ok = save(iconSheet(), folder, QStringLiteral("tray-icons.png")) && ok;

    // The windows, with a store that has seen a few readings.
    QTemporaryDir scratch;
    QSettings frames(scratch.filePath(QStringLiteral("frames.ini")), QSettings::IniFormat);
    QtApplication application;
    QtWindows windows(frames, application);
    FakeStatusItem item;
    GremlinMenu storeMenu(item, {});
    FakeClock clock;
    UserData userData(storeMenu, clock, out);
    userData.setHasAXAccess(true);
    for (const auto status :
         {MeetingStatus::noMeeting, MeetingStatus::onMute, MeetingStatus::onMute,
          MeetingStatus::offMute, MeetingStatus::onMute}) {
        clock.advanceSeconds(1);
        userData.setStatus(status);
    }
    FakeUserDefaults defaults;
    FakeKeyboardLayout layout;
    QtLocalKeyMonitor monitor;
    FakeLoginItems loginItems;
    FakeUnifiedLog log;
    UserPrefs prefs(defaults, {});
    prefs.setMuteOnJoinTuple(false);
    HotkeyRecorder recorder(defaults, layout, monitor);
    LaunchAtLogin launchAtLogin(loginItems, log);

    const std::pair<WindowSpec, const char*> shots[] = {
        {windowtable::preferences.description(
             PreferencesContent{&prefs, &recorder, &launchAtLogin, {}}),
         "window-preferences.png"},
        {windowtable::debug.description(DebugContent{&userData}), "window-debug.png"},
        {windowtable::accessibilitySetup.description(AccessibilitySetupContent{{}}),
         "window-accessibility.png"},
        {windowtable::appSetup.description(
             AppSetupContent{SetupView{SetupView::Kind::tupleCLI, {}}}, "Tuple Setup"),
         "window-tuple-setup.png"},
        {windowtable::about.description(AboutContent{HG_VERSION}), "window-about.png"},
    };
    for (const auto& [description, file] : shots) {
        const WindowId id = windows.create(description);
        windows.makeKeyAndOrderFront(id);
        QApplication::processEvents();
        ok = save(windows.window(id)->grab(), folder, QString::fromLatin1(file)) && ok;
        windows.close(id);
    }

    // The shortcut field while recording.
    const WindowId prefsAgain = windows.create(windowtable::preferences.description(
        PreferencesContent{&prefs, &recorder, &launchAtLogin, {}}));
    windows.makeKeyAndOrderFront(prefsAgain);
    recorder.startRecording();
    QApplication::processEvents();
    ok = save(windows.window(prefsAgain)->grab(), folder,
              QStringLiteral("window-preferences-recording.png")) &&
         ok;
    recorder.stopRecording();
    return ok ? 0 : 1;
}
