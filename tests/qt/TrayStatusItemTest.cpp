// The tray menu as the user sees it: rows, icon, the hidden debug row, and
// the rule that an open menu is never changed under the pointer.
#include "shells/qt/TrayStatusItem.hpp"

#include "backends/fake/BufferLineSink.hpp"
#include "menu/GremlinMenu.hpp"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QTest>

using namespace hg;

namespace {

struct Fixture {
    BufferLineSink out;
    Qt::KeyboardModifiers held = Qt::NoModifier;
    TrayStatusItem tray{out,
                        {.modifiers = [this] { return held; }, .trayWait = {}, .exported = false}};
    QStringList called;
    std::function<void()> note(const char* name) {
        return [this, name] { called << QString::fromLatin1(name); };
    }
    GremlinMenu menu{tray,
                     {note("toggle"),
                      note("prefs"),
                      note("axErr"),
                      note("update"),
                      note("quit"),
                      note("debugView"),
                      {}}};

    // One line per row: "---" for a separator, else the title, with
    // " (disabled)" and " [red]" where they apply.
    QStringList rows() {
        QStringList shown;
        for (QAction* action : tray.menu().actions()) {
            if (action->isSeparator()) {
                shown << QStringLiteral("---");
                continue;
            }
            shown << action->text() + (action->isEnabled() ? "" : " (disabled)") +
                         (action->property(MenuRowStyle::redProperty).toBool() ? " [red]" : "");
        }
        return shown;
    }
    QAction* row(const char* title) {
        for (QAction* action : tray.menu().actions()) {
            if (action->text() == QLatin1String(title)) {
                return action;
            }
        }
        return nullptr;
    }
    bool hasDebugRow() { return row("Show Debug View") != nullptr; }
    void open(Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        held = modifiers;
        tray.popUp(QPoint(10, 10));
    }
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
    void rowsAndIconForEveryStatus() {
        using S = MeetingStatus;
        const char* none = "No meeting detected (disabled), ---";
        const char* toggle = "Toggle Mute, ---";
        // The rows above "Preferences...", which ends every menu.
        const struct {
            S status;
            bool hasUpdate;
            const char* icon;
            const char* rows;
        } cases[] = {
            {S::notRunning, false, "NoMeetingIcon", none},
            {S::noMeeting, false, "NoMeetingIcon", none},
            {S::onMute, false, "OnMuteIcon", toggle},
            {S::offMute, false, "OffMuteIcon", toggle},
            {S::setupError, false, "ErrorIcon", "Setup Required... [red], ---"},
            {S::error, false, "ErrorIcon", "Error... [red], ---"},
            {S::offMute, true, "OffMuteIcon", "Toggle Mute, ---, Update Now..."},
        };
        for (const auto& c : cases) {
            Fixture f;
            // Start from another status, so the rows are edited rather than built anew.
            f.menu.updateMenu(S::setupError);
            f.menu.setHasUpdate(c.hasUpdate);
            f.menu.updateMenu(c.status);
            // The status leads both sides, so that a failure names its case.
            const QString name = QString::fromStdString(std::string(toString(c.status))) + ": ";
            QCOMPARE(name + f.rows().join(", ") + " @ " + f.tray.imageName().c_str(),
                     name + c.rows + ", Preferences..., ---, Quit @ " + c.icon);
            QVERIFY(!f.tray.icon().pixmap(22, 22).isNull());
        }
    }

    void saysWhenThereIsNoTray() {
        Fixture f;
        // The offscreen platform has no system tray.
        QCOMPARE(f.out.lines(),
                 std::vector<std::string>{
                     "No system tray available: the menu is not shown; the shortcut still works"});
        f.tray.setImage("NoSuchIcon");
        QVERIFY(f.tray.icon().isNull());
    }

    void aHostThatDrawsTheMenuGetsItCurrentAndUnchangedByOpening() {
        BufferLineSink out;
        TrayStatusItem tray{
            out, {.modifiers = [] { return Qt::AltModifier; }, .trayWait = {}, .exported = true}};
        GremlinMenu menu{tray, {}};
        menu.updateMenu(MeetingStatus::onMute);
        // The host opens its own copy (Alt held) and never says it closed.
        emit tray.menu().aboutToShow();
        QVERIFY(!tray.isMenuOpen());
        QCOMPARE(tray.applier().shown(), GremlinMenu::buildMenu(MeetingStatus::onMute, false));
        menu.updateMenu(MeetingStatus::noMeeting);
        QCOMPARE(tray.applier().shown(), GremlinMenu::buildMenu(MeetingStatus::noMeeting, false));
        // Its own popup (a left click) still offers the debug row with Alt.
        tray.popUp(QPoint(10, 10));
        QVERIFY(tray.applier().shown().indexOfTag(GremlinMenu::debugViewTag) >= 0);
        tray.menu().hide();
        QCoreApplication::processEvents();
        QVERIFY(tray.applier().shown().indexOfTag(GremlinMenu::debugViewTag) < 0);
    }

    void altShowsTheDebugRowForOneOpeningOnly() {
        Fixture f;
        f.menu.setHasUpdate(true);
        f.menu.updateMenu(MeetingStatus::onMute);
        f.open(Qt::AltModifier);
        QCOMPARE(f.rows(), (QStringList{"Toggle Mute", "---", "Update Now...", "Show Debug View",
                                        "Preferences...", "---", "Quit"}));
        f.close();
        QVERIFY(!f.hasDebugRow());
    }

    void openMenuIsNotChangedUntilItCloses() {
        Fixture f;
        f.open();
        QVERIFY(f.tray.isMenuOpen());
        const QList<QAction*> before = f.tray.menu().actions();
        const QStringList rowsBefore = f.rows();
        f.menu.updateMenu(MeetingStatus::offMute);
        f.menu.updateMenu(MeetingStatus::error);
        QCOMPARE(f.tray.menu().actions(), before);
        QCOMPARE(f.rows(), rowsBefore);
        // The icon is not part of the menu and changes at once.
        QCOMPARE(QString::fromStdString(f.tray.imageName()), QStringLiteral("ErrorIcon"));
        f.close();
        QCOMPARE(f.rows().first(), QStringLiteral("Error... [red]"));
    }

    void onlyRowsThatDifferAreTouched() {
        Fixture f;
        f.menu.updateMenu(MeetingStatus::onMute);
        const QList<QAction*> muted = f.tray.menu().actions();
        f.menu.updateMenu(MeetingStatus::offMute);    // same rows
        f.menu.updateMenu(MeetingStatus::setupError); // first row retitled in place
        QCOMPARE(f.tray.menu().actions(), muted);
        f.menu.setHasUpdate(true);
        f.menu.updateMenu(MeetingStatus::setupError); // one row added, the rest kept
        QList<QAction*> kept = f.tray.menu().actions();
        QCOMPARE(kept.takeAt(2)->text(), QStringLiteral("Update Now..."));
        QCOMPARE(kept, muted);
    }

    void theDebugRowChosenFromTheMenuStillFires() {
        // The menu hides before the chosen row fires, and the close takes the
        // debug row away: the row must still fire.
        Fixture f;
        f.open(Qt::AltModifier);
        QTest::keyClick(&f.tray.menu(), Qt::Key_Down); // the first enabled row
        QTest::keyClick(&f.tray.menu(), Qt::Key_Return);
        QCOMPARE(f.called, QStringList{QStringLiteral("debugView")});
        QCoreApplication::processEvents();
        QVERIFY(!f.tray.isMenuOpen());
        QVERIFY(!f.hasDebugRow());

        // Chosen before the menu reports its hiding, as a menu exported over
        // D-Bus may do: the close is handled first, the row still fires.
        f.menu.updateMenu(MeetingStatus::onMute);
        f.open(Qt::AltModifier);
        f.row("Show Debug View")->trigger();
        QVERIFY(!f.tray.isMenuOpen());
        QVERIFY(!f.hasDebugRow());
        f.close();
        f.open();
        f.row("Toggle Mute")->trigger();
        QCOMPARE(f.called, (QStringList{"debugView", "debugView", "toggle"}));
        f.close();
    }

    void reopeningBeforeTheCloseIsHandledPairsThem() {
        Fixture f;
        f.open(Qt::AltModifier);
        f.tray.menu().hide();
        f.open(); // at once, before the event loop ran
        QVERIFY(f.tray.isMenuOpen());
        QVERIFY(!f.hasDebugRow());
        QCoreApplication::processEvents();
        QVERIFY(f.tray.isMenuOpen()); // the stale close does not close this opening
        f.close();
        QVERIFY(!f.tray.isMenuOpen());
    }

    void redRowsAreDrawnInRed() {
        Fixture f;
        const auto redPixels = [&f] {
            f.open();
            QMenu& menu = f.tray.menu();
            const QImage image = menu.grab(menu.actionGeometry(menu.actions().first())).toImage();
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
