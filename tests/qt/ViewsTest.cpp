// The window contents driven as a user would: clicking switches and buttons,
// typing a shortcut, and watching them follow changes made elsewhere.
#include "app/LaunchAtLogin.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeLoginItems.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "core/UserData.hpp"
#include "core/UserPrefs.hpp"
#include "hotkey/Hotkey.hpp"
#include "hotkey/HotkeyRecorder.hpp"
#include "menu/GremlinMenu.hpp"
#include "shells/qt/QtLocalKeyMonitor.hpp"
#include "shells/qt/views/DebugView.hpp"
#include "shells/qt/views/HotkeyRecorderControl.hpp"
#include "shells/qt/views/LaunchAtLoginToggle.hpp"
#include "shells/qt/views/PrefsView.hpp"
#include "support/ScriptedMeetingApp.hpp"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace hg;

namespace {

struct PrefsFixture {
    FakeUserDefaults defaults;
    FakeKeyboardLayout layout;
    QtLocalKeyMonitor monitor;
    FakeLoginItems loginItems;
    FakeUnifiedLog log;
    int updateChecks = 0;
    UserPrefs prefs{defaults, [this] { ++updateChecks; }};
    HotkeyRecorder recorder{defaults, layout, monitor};
    LaunchAtLogin launchAtLogin{loginItems, log};
    views::PrefsView view{prefs, recorder, launchAtLogin, {}};
};

struct DebugFixture {
    FakeStatusItem item;
    GremlinMenu menu{item, {}};
    FakeClock clock;
    BufferLineSink out;
    UserData userData{menu, clock, out};
    views::DebugView view{userData};

    // The introduction and the three status lines.
    QStringList texts() {
        QStringList lines;
        for (auto* label : view.findChildren<QLabel*>(Qt::FindDirectChildrenOnly)) {
            lines << label->text();
        }
        return lines;
    }
    // The three lines of each history column, left to right.
    QStringList history() {
        QStringList columns;
        for (int i = 0; i < view.historyRow().count(); ++i) {
            QStringList lines;
            for (auto* label : view.historyRow().itemAt(i)->widget()->findChildren<QLabel*>()) {
                lines << label->text();
            }
            columns << lines.join(QLatin1Char('/'));
        }
        return columns;
    }
};

} // namespace

class ViewsTest : public QObject {
    Q_OBJECT

private slots:
    void prefsSwitchesWriteTheStoreAtOnce() {
        PrefsFixture f;
        QVERIFY(f.view.zoomToggle().isChecked());
        QVERIFY(f.view.tupleToggle().isChecked());
        QTest::mouseClick(&f.view.zoomToggle(), Qt::LeftButton);
        // No turn of the event loop in between: written at once.
        QCOMPARE(f.defaults.objectForKey("muteOnJoin_Zoom"), std::optional<DefaultsValue>(false));
        QCOMPARE(f.prefs.muteOnJoinZoom(), false);
        QCOMPARE(f.defaults.objectForKey("muteOnJoin_Tuple"), std::optional<DefaultsValue>(true));
        QTest::mouseClick(&f.view.zoomToggle(), Qt::LeftButton);
        QCOMPARE(f.defaults.objectForKey("muteOnJoin_Zoom"), std::optional<DefaultsValue>(true));

        // The microphone's switches: off and on while nothing is stored.
        QVERIFY(!f.view.otherAppsToggle().isChecked());
        QVERIFY(f.view.microphoneToggle().isChecked());
        QTest::mouseClick(&f.view.otherAppsToggle(), Qt::LeftButton);
        QTest::mouseClick(&f.view.microphoneToggle(), Qt::LeftButton);
        QCOMPARE(f.defaults.objectForKey("muteMicrophoneInOtherApps"),
                 std::optional<DefaultsValue>(true));
        QCOMPARE(f.defaults.objectForKey("muteOnJoin_Microphone"),
                 std::optional<DefaultsValue>(false));
    }

    void prefsRedrawWhenChangedElsewhere() {
        PrefsFixture f;
        f.prefs.setMuteOnJoinTuple(false);
        QTRY_VERIFY(!f.view.tupleToggle().isChecked());
        QVERIFY(f.view.zoomToggle().isChecked());
        f.prefs.setMuteOnJoinTuple(true);
        f.prefs.setMuteOnJoinZoom(false);
        QTRY_VERIFY(f.view.tupleToggle().isChecked());
        QVERIFY(!f.view.zoomToggle().isChecked());
    }

    void prefsUpdateButtonAndLaunchAtLogin() {
        PrefsFixture f;
        auto* update = f.view.findChild<QPushButton*>();
        QCOMPARE(update->text(), QStringLiteral("Check For Updates..."));
        update->click();
        QCOMPARE(f.updateChecks, 1);
        QVERIFY(update->toolTip().isEmpty());
        {
            // Updates off: the button cannot be pressed, and its tooltip says why.
            UserPrefs off{f.defaults, [&f] { ++f.updateChecks; }, "Updates are off: no feed"};
            views::PrefsView offView{off, f.recorder, f.launchAtLogin, {}};
            auto* offUpdate = offView.findChild<QPushButton*>();
            QVERIFY(!offUpdate->isEnabled());
            QCOMPARE(offUpdate->toolTip(), QStringLiteral("Updates are off: no feed"));
            offUpdate->click();
            QCOMPARE(f.updateChecks, 1);
        }
        auto* login = f.view.findChild<views::LaunchAtLoginToggle*>();
        QCOMPARE(login->text(), QStringLiteral("Start Hush Gremlin on login"));
        QVERIFY(!login->isChecked());
        QTest::mouseClick(login, Qt::LeftButton);
        QCOMPARE(f.loginItems.status(), LoginItems::Status::enabled);
        QTRY_VERIFY(login->isChecked());
        // A refused change shows the service's state again.
        f.loginItems.fail = true;
        QTest::mouseClick(login, Qt::LeftButton);
        QTRY_VERIFY(login->isChecked());
        QCOMPARE(f.log.lines().size(), std::size_t{1});
        // An entry removed outside the program shows when the view shows again.
        f.loginItems.setStatus(LoginItems::Status::notRegistered);
        f.view.hide();
        f.view.show();
        QTRY_VERIFY(!login->isChecked());
    }

    void recordingAShortcut() {
        PrefsFixture f;
        auto* other = new QLineEdit(&f.view);
        f.view.layout()->addWidget(other);
        f.view.show();
        f.view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&f.view));
        auto* field = f.view.findChild<views::HotkeyRecorderControl*>();
        QTest::mouseClick(field, Qt::LeftButton);
        QCOMPARE(f.recorder.shownText(), std::string("Type shortcut\u2026"));
        QTest::keyClick(field, Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(!f.recorder.isRecording());
        QCOMPARE(Hotkey::load(f.defaults), (Hotkey{40, 0x60000}));
        QCOMPARE(f.recorder.shownText(), std::string("⌃⇧K"));

        // Moving the focus away cancels a recording.
        QTest::mouseClick(field, Qt::LeftButton);
        QVERIFY(field->hasFocus());
        other->setFocus(Qt::MouseFocusReason);
        QVERIFY(!f.recorder.isRecording());
        QCOMPARE(f.recorder.shownText(), std::string("⌃⇧K"));
    }

    void debugViewShowsTheStore() {
        DebugFixture f;
        const QString intro = "This is a debug menu for HushGremlin. Feel free to close it.";
        QCOMPARE(f.texts(), (QStringList{intro, "Truest Status: error", "Read Status: error",
                                         "AXAccess: False"}));
        QVERIFY(f.history().isEmpty());

        f.userData.setHasAXAccess(true);
        f.userData.setStatus(MeetingStatus::noMeeting);
        f.userData.setStatus(MeetingStatus::onMute);
        QTRY_COMPARE(f.texts(), (QStringList{intro, "Truest Status: onMute", "Read Status: onMute",
                                             "AXAccess: True"}));
        // Each snapshot is taken as a reading arrives, before it is shown.
        QCOMPARE(f.history(), (QStringList{"noMeeting/onMute/True", "error/noMeeting/True"}));

        for (int i = 0; i < 11; ++i) {
            f.userData.setStatus(MeetingStatus::offMute);
        }
        QTRY_COMPARE(f.history().size(), 10);
    }

    void debugToggleMuteFollowsTheReadStatus() {
        DebugFixture f;
        auto app = std::make_shared<ScriptedMeetingApp>();
        f.userData.setActiveApp(app);
        QVERIFY(!f.view.toggleMuteButton().isEnabled());
        using S = MeetingStatus;
        for (const S status :
             {S::onMute, S::noMeeting, S::offMute, S::setupError, S::notRunning, S::error}) {
            f.userData.setStatus(status);
            QTRY_COMPARE(f.view.toggleMuteButton().isEnabled(),
                         status == S::onMute || status == S::offMute);
        }
        // The truest status may say onMute while the read one does not.
        f.userData.setStatus(MeetingStatus::onMute);
        f.clock.advanceSeconds(1);
        f.userData.setStatus(MeetingStatus::error);
        QTRY_VERIFY(!f.view.toggleMuteButton().isEnabled());
        QVERIFY(f.userData.truestStatus() == MeetingStatus::onMute);

        f.userData.setStatus(MeetingStatus::offMute);
        QTRY_VERIFY(f.view.toggleMuteButton().isEnabled());
        QTest::mouseClick(&f.view.toggleMuteButton(), Qt::LeftButton);
        QCOMPARE(app->toggleFromStatuses, std::vector<MeetingStatus>{MeetingStatus::offMute});
        f.out.clear();
        QTest::mouseClick(&f.view.pressButton(), Qt::LeftButton);
        QCOMPARE(f.out.lines().front(), std::string("BUTTON PRESSED HERE!"));
    }
};

QTEST_MAIN(ViewsTest)
#include "ViewsTest.moc"
