// The windows as the application delegate opens them, on Qt widgets: built
// once, brought back on every request, hidden by closing, their frames kept.
#include "shells/qt/QtWindows.hpp"

#include "app/AppDelegate.hpp"
#include "app/WindowTable.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeEventTap.hpp"
#include "backends/fake/FakeFileSystem.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeLoginItems.hpp"
#include "backends/fake/FakeMicrophone.hpp"
#include "backends/fake/FakeProcessRunner.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/fake/FakeTimers.hpp"
#include "backends/fake/FakeUpdater.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "shells/qt/QtApplication.hpp"
#include "shells/qt/QtLocalKeyMonitor.hpp"
#include "shells/qt/TrayStatusItem.hpp"
#include "shells/qt/views/EnableAXView.hpp"

#include <QGuiApplication>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace hg;

namespace {

// The application over Qt windows and a Qt tray; every other port is a fake.
struct Desktop {
    QTemporaryDir dir;
    QSettings frames{dir.filePath(QStringLiteral("frames.ini")), QSettings::IniFormat};
    BufferLineSink out;
    FakeClock clock;
    FakeTimers timers{clock};
    FakeUserDefaults defaults;
    TrayStatusItem statusItem{out, {.exported = false}};
    QtApplication application;
    QtWindows windows{frames, application};
    FakeAccessibility accessibility;
    FakeRunningApplications running;
    FakeFileSystem files;
    FakeProcessRunner runner;
    FakeEventTap tap;
    FakeKeyboardLayout layout;
    QtLocalKeyMonitor monitor;
    FakeLoginItems loginItems;
    FakeUnifiedLog log;
    FakeUpdater updater;
    FakeMicrophone microphone;
    Platform platform{clock,       timers,        out,        defaults, statusItem, windows,
                      application, accessibility, running,    files,    runner,     tap,
                      layout,      monitor,       loginItems, log,      updater,    microphone};
    AppDelegate delegate{platform};
    // The windows' views refer to the delegate's objects: they go first.
    ~Desktop() { windows.destroyAll(); }
};

} // namespace

class QtWindowsTest : public QObject {
    Q_OBJECT

private slots:
    void prefsWindowIsBuiltOnceAndReused() {
        Desktop d;
        d.delegate.showPrefsWindow();
        QPointer<QWidget> prefs = d.windows.window(*d.delegate.prefsWindow());
        QVERIFY(prefs);
        QVERIFY(prefs->isVisible());
        QCOMPARE(prefs->windowTitle(), QStringLiteral("Hush Gremlin Preferences"));
        // Not resizable: its WindowSpec's width, and taller only by the rows
        // of the microphone switch.
        QCOMPARE(prefs->minimumSize(), prefs->maximumSize());
        QCOMPARE(prefs->width(), 300);
        QVERIFY(prefs->height() >= 200);
        const Qt::WindowFlags flags = prefs->windowFlags();
        QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
        QVERIFY(flags.testFlag(Qt::WindowMinimizeButtonHint));
        QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));

        prefs->close();
        QVERIFY(prefs); // hidden, not destroyed
        QVERIFY(!prefs->isVisible());
        d.delegate.showPrefsWindow();
        d.delegate.showPrefsWindow();
        QCOMPARE(d.windows.count(), std::size_t{1});
        QCOMPARE(d.windows.window(*d.delegate.prefsWindow()), prefs.data());
        QVERIFY(prefs->isVisible());
    }

    void theDebugWindowIsAPanelThatCanBeResized() {
        Desktop d;
        d.delegate.showDebugWindow();
        QWidget* debug = d.windows.window(*d.delegate.debugWindow());
        QVERIFY(debug->windowTitle().trimmed().isEmpty());
        QVERIFY(debug->windowFlags().testFlags(Qt::Tool | Qt::WindowStaysOnTopHint));
        QVERIFY(debug->testAttribute(Qt::WA_ShowWithoutActivating));
        QVERIFY(debug->minimumSize() != debug->maximumSize());
        QCOMPARE(debug->size(), QSize(480, 300));
    }

    void returnPressesTheGrantButtonOnce() {
        Desktop d;
        d.delegate.startUp();
        QWidget* ax = d.windows.window(*d.delegate.axSetupWindow());
        ax->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(ax));
        QCOMPARE(ax->findChild<views::EnableAXView*>()->grantButton().text(),
                 QStringLiteral("Grant Acessibility Permission"));
        const int promptsBefore = d.accessibility.promptCount();
        QTest::keyClick(ax, Qt::Key_Return);
        QCOMPARE(d.accessibility.promptCount(), promptsBefore + 1);
        // The action closes the window.
        QVERIFY(!ax->isVisible());
    }

    void framesAreKeptUnderTheAutosaveName() {
        Desktop d;
        d.delegate.showAboutWindow();
        QWidget* about = d.windows.window(*d.delegate.aboutWindow());
        QVERIFY(QTest::qWaitForWindowExposed(about));
        about->move(about->pos() + QPoint(31, 17));
        const QRect moved = about->geometry();
        d.windows.close(*d.delegate.aboutWindow());
        QVERIFY(d.frames.contains(QStringLiteral("WindowFrames/HG About")));
        // The next run builds the window where it was left.
        QtWindows again(d.frames, d.application);
        const WindowId id = again.create(windowtable::about.description(AboutContent{HG_VERSION}));
        QCOMPARE(again.window(id)->geometry(), moved);

        // A saved frame larger than the screen, or hanging over its edge, is
        // brought inside the screen's free area.
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        QRect huge(QPoint(0, 0), QSize(100000, 100000));
        huge.moveCenter(area.center());
        d.frames.setValue(QStringLiteral("WindowFrames/Main Window"), huge);
        const WindowId panel = again.create(windowtable::debug.description(DebugContent{}));
        QVERIFY(area.contains(again.window(panel)->geometry()));
    }
};

QTEST_MAIN(QtWindowsTest)
#include "QtWindowsTest.moc"
