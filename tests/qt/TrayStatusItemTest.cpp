// The tray menu as the user sees it: rows, icon, the hidden debug row, and
// the rule that an open menu is never changed under the pointer.
#include "platform/qt/TrayStatusItem.hpp"

#include "menu/GremlinMenu.hpp"
#include "platform/fake/BufferLineSink.hpp"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QTest>

using namespace hg;

namespace {

// One line per row: "---" for a separator, the title otherwise, with
// " (disabled)" and " [red]" where they apply.
QStringList rows(QMenu& menu) {
    QStringList out;
    for (QAction* action : menu.actions()) {
        if (action->isSeparator()) {
            out << QStringLiteral("---");
            continue;
        }
        QString row = action->text();
        if (!action->isEnabled()) {
            row += QStringLiteral(" (disabled)");
        }
        if (action->property(MenuRowStyle::redProperty).toBool()) {
            row += QStringLiteral(" [red]");
        }
        out << row;
    }
    return out;
}

QAction* actionTitled(QMenu& menu, const QString& title) {
    for (QAction* action : menu.actions()) {
        if (action->text() == title) {
            return action;
        }
    }
    return nullptr;
}

struct Fixture {
    BufferLineSink out;
    Qt::KeyboardModifiers held = Qt::NoModifier;
    TrayStatusItem tray{out, [this] { return held; }};
    QStringList called;
    GremlinMenu menu{tray, GremlinMenuCallbacks{
                               .toggle = [this] { called << QStringLiteral("toggle"); },
                               .prefs = [this] { called << QStringLiteral("prefs"); },
                               .axErr = [this] { called << QStringLiteral("axErr"); },
                               .update = [this] { called << QStringLiteral("update"); },
                               .quit = [this] { called << QStringLiteral("quit"); },
                               .debugView = [this] { called << QStringLiteral("debugView"); },
                           }};

    void open() { tray.menu().popup(QPoint(10, 10)); }
    // Hides the menu and lets the close be handled.
    void close() {
        tray.menu().hide();
        QCoreApplication::processEvents();
    }
};

} // namespace

class TrayStatusItemTest : public QObject {
    Q_OBJECT

private slots:
    void rowsAndIconForEveryStatus_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("hasUpdate");
        QTest::addColumn<QString>("icon");
        QTest::addColumn<QStringList>("expected");
        const QStringList tail{QStringLiteral("Preferences..."), QStringLiteral("---"),
                               QStringLiteral("Quit")};
        const auto menu = [&tail](const QString& first) {
            return QStringList{first, QStringLiteral("---")} + tail;
        };
        QTest::newRow("notRunning") << int(MeetingStatus::notRunning) << false << "NoMeetingIcon"
                                    << menu(QStringLiteral("No meeting detected (disabled)"));
        QTest::newRow("noMeeting") << int(MeetingStatus::noMeeting) << false << "NoMeetingIcon"
                                   << menu(QStringLiteral("No meeting detected (disabled)"));
        QTest::newRow("onMute") << int(MeetingStatus::onMute) << false << "OnMuteIcon"
                                << menu(QStringLiteral("Toggle Mute"));
        QTest::newRow("offMute") << int(MeetingStatus::offMute) << false << "OffMuteIcon"
                                 << menu(QStringLiteral("Toggle Mute"));
        QTest::newRow("setupError") << int(MeetingStatus::setupError) << false << "ErrorIcon"
                                    << menu(QStringLiteral("Setup Required... [red]"));
        QTest::newRow("error") << int(MeetingStatus::error) << false << "ErrorIcon"
                               << menu(QStringLiteral("Error... [red]"));
        QTest::newRow("offMute with update")
            << int(MeetingStatus::offMute) << true << "OffMuteIcon"
            << QStringList{QStringLiteral("Toggle Mute"), QStringLiteral("---"),
                           QStringLiteral("Update Now...")} +
                   tail;
    }
    void rowsAndIconForEveryStatus() {
        QFETCH(int, status);
        QFETCH(bool, hasUpdate);
        QFETCH(QString, icon);
        QFETCH(QStringList, expected);
        Fixture f;
        // Start from a different status each time, so the rows are edited
        // rather than built from nothing.
        f.menu.updateMenu(MeetingStatus::setupError);
        f.menu.setHasUpdate(hasUpdate);
        f.menu.updateMenu(static_cast<MeetingStatus>(status));
        QCOMPARE(rows(f.tray.menu()), expected);
        QCOMPARE(QString::fromStdString(f.tray.imageName()), icon);
        QVERIFY(!f.tray.icon().isNull());
        QVERIFY(!f.tray.icon().pixmap(22, 22).isNull());
    }

    void startsWithTheNoMeetingLookAndSaysWhenThereIsNoTray() {
        Fixture f;
        QCOMPARE(rows(f.tray.menu()).first(), QStringLiteral("No meeting detected (disabled)"));
        QCOMPARE(QString::fromStdString(f.tray.imageName()), QStringLiteral("NoMeetingIcon"));
        // The offscreen platform has no system tray.
        QCOMPARE(f.out.lines(),
                 std::vector<std::string>{
                     "No system tray available: the menu is not shown; the shortcut still works"});
    }

    void unknownImageLeavesNoIcon() {
        Fixture f;
        f.tray.setImage("NoSuchIcon");
        QVERIFY(f.tray.icon().isNull());
        f.tray.setImage("SideEyeIcon");
        QVERIFY(!f.tray.icon().isNull());
    }

    void altShowsTheDebugRowForOneOpeningOnly() {
        Fixture f;
        f.menu.setHasUpdate(true);
        f.menu.updateMenu(MeetingStatus::onMute);
        f.held = Qt::AltModifier;
        f.open();
        QCOMPARE(rows(f.tray.menu()),
                 (QStringList{"Toggle Mute", "---", "Update Now...", "Show Debug View",
                              "Preferences...", "---", "Quit"}));
        f.close();
        QVERIFY(!actionTitled(f.tray.menu(), QStringLiteral("Show Debug View")));
        f.held = Qt::ShiftModifier;
        f.open();
        QVERIFY(!actionTitled(f.tray.menu(), QStringLiteral("Show Debug View")));
        f.close();
    }

    void openMenuIsNotChangedUntilItCloses() {
        Fixture f;
        f.open();
        QVERIFY(f.tray.isMenuOpen());
        const QList<QAction*> before = f.tray.menu().actions();
        const QStringList rowsBefore = rows(f.tray.menu());
        f.menu.updateMenu(MeetingStatus::offMute);
        f.menu.updateMenu(MeetingStatus::error);
        QCOMPARE(f.tray.menu().actions(), before);
        QCOMPARE(rows(f.tray.menu()), rowsBefore);
        // The icon is not part of the menu and changes at once.
        QCOMPARE(QString::fromStdString(f.tray.imageName()), QStringLiteral("ErrorIcon"));
        f.close();
        QCOMPARE(rows(f.tray.menu()).first(), QStringLiteral("Error... [red]"));
    }

    void onlyRowsThatDifferAreTouched() {
        Fixture f;
        f.menu.updateMenu(MeetingStatus::onMute);
        const QList<QAction*> muted = f.tray.menu().actions();
        f.menu.updateMenu(MeetingStatus::offMute); // same rows
        QCOMPARE(f.tray.menu().actions(), muted);
        f.menu.updateMenu(MeetingStatus::setupError); // first row retitled in place
        const QList<QAction*> setup = f.tray.menu().actions();
        QCOMPARE(setup, muted);
        QCOMPARE(setup.first()->text(), QStringLiteral("Setup Required..."));
        f.menu.setHasUpdate(true);
        f.menu.updateMenu(MeetingStatus::setupError); // one row added, the rest kept
        const QList<QAction*> withUpdate = f.tray.menu().actions();
        QCOMPARE(withUpdate.size(), setup.size() + 1);
        for (QAction* action : setup) {
            QVERIFY(withUpdate.contains(action));
        }
    }

    void choosingARowClosesTheMenuThenRunsItsCallback() {
        Fixture f;
        f.menu.updateMenu(MeetingStatus::onMute);
        f.held = Qt::AltModifier;
        f.open();
        // Triggered before the menu reports its hiding, as a menu exported
        // over D-Bus may do: the debug row is still chosen, and removed.
        actionTitled(f.tray.menu(), QStringLiteral("Show Debug View"))->trigger();
        QCOMPARE(f.called, QStringList{QStringLiteral("debugView")});
        QVERIFY(!f.tray.isMenuOpen());
        QVERIFY(!actionTitled(f.tray.menu(), QStringLiteral("Show Debug View")));
        f.close();

        f.open();
        actionTitled(f.tray.menu(), QStringLiteral("Toggle Mute"))->trigger();
        actionTitled(f.tray.menu(), QStringLiteral("Preferences..."))->trigger();
        actionTitled(f.tray.menu(), QStringLiteral("Quit"))->trigger();
        QCOMPARE(f.called, (QStringList{"debugView", "toggle", "prefs", "quit"}));
        f.close();
    }

    void theDebugRowCanBeChosenInTheMenuItself() {
        // The menu hides before the chosen row fires, and the close takes the
        // debug row away: the row must still fire.
        Fixture f;
        f.held = Qt::AltModifier;
        f.open();
        QTest::keyClick(&f.tray.menu(), Qt::Key_Down); // the first enabled row
        QTest::keyClick(&f.tray.menu(), Qt::Key_Return);
        QCOMPARE(f.called, QStringList{QStringLiteral("debugView")});
        QCoreApplication::processEvents();
        QVERIFY(!f.tray.isMenuOpen());
        QVERIFY(!actionTitled(f.tray.menu(), QStringLiteral("Show Debug View")));
    }

    void reopeningBeforeTheCloseIsHandledPairsThem() {
        Fixture f;
        f.held = Qt::AltModifier;
        f.open();
        f.tray.menu().hide();
        f.held = Qt::NoModifier;
        f.open(); // at once, before the event loop ran
        QVERIFY(f.tray.isMenuOpen());
        QVERIFY(!actionTitled(f.tray.menu(), QStringLiteral("Show Debug View")));
        QCoreApplication::processEvents();
        QVERIFY(f.tray.isMenuOpen()); // the stale close does not close this opening
        f.close();
        QVERIFY(!f.tray.isMenuOpen());
    }

    void redRowsAreDrawnInRed() {
        Fixture f;
        const auto redPixels = [&f] {
            f.open();
            QAction* first = f.tray.menu().actions().first();
            const QRect row = f.tray.menu().actionGeometry(first);
            const QImage image = f.tray.menu().grab(row).toImage();
            f.close();
            int count = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor c = image.pixelColor(x, y);
                    count += c.red() > 170 && c.green() < 90 && c.blue() < 90 ? 1 : 0;
                }
            }
            return count;
        };
        f.menu.updateMenu(MeetingStatus::error);
        QVERIFY(redPixels() > 10);
        f.menu.updateMenu(MeetingStatus::onMute);
        QCOMPARE(redPixels(), 0);
    }
};

QTEST_MAIN(TrayStatusItemTest)
#include "TrayStatusItemTest.moc"
