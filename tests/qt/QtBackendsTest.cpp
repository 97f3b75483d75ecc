// The Qt backends of the ports that carry data: the settings store, the key
// monitor's translation and consumption of keys, and the timers.
#include "core/UserPrefs.hpp"
#include "hotkey/Hotkey.hpp"
#include "platform/fake/FakeClock.hpp"
#include "platform/qt/BriefRunningApplicationsCache.hpp"
#include "platform/qt/QtLocalKeyMonitor.hpp"
#include "platform/qt/QtTimers.hpp"
#include "platform/qt/QtUserDefaults.hpp"

#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

using namespace hg;

Q_DECLARE_METATYPE(LocalKeyEvent::Type)

class QtBackendsTest : public QObject {
    Q_OBJECT

private slots:
    void valuesSurviveAFreshStore() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("store.ini"));
        const Hotkey shortcut{40, 0x120000};
        {
            QtUserDefaults store(path);
            store.setBool("flag", true);
            store.setBool("off", false);
            store.setObject("count", DefaultsValue{std::int64_t{-42}});
            store.setObject("ratio", DefaultsValue{2.5});
            store.setObject("name", DefaultsValue{std::string("Grüß, Gremlin")});
            shortcut.save(store);
            store.setBool("gone", true);
            store.removeObject("gone");
        }
        QtUserDefaults store(path);
        QVERIFY(store.boolForKey("flag"));
        QVERIFY(store.hasObject("off"));
        QVERIFY(!store.boolForKey("off"));
        QCOMPARE(store.integerForKey("count"), std::int64_t{-42});
        QCOMPARE(std::stod(store.stringForKey("ratio").value_or("0")), 2.5);
        QCOMPARE(store.stringForKey("name"), std::optional<std::string>("Grüß, Gremlin"));
        QCOMPARE(Hotkey::load(store), shortcut);
        QVERIFY(!store.hasObject("gone"));
        QVERIFY(!store.hasObject("never"));
    }

    void writesReachTheFileAtOnce() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("store.ini"));
        QtUserDefaults store(path);
        UserPrefs prefs(store, {});
        prefs.setMuteOnJoinTuple(false);
        // Another reader of the same file, while the first store still lives.
        QtUserDefaults other(path);
        QVERIFY(other.boolForKey("muteOnJoin_Zoom"));
        QVERIFY(other.hasObject("muteOnJoin_Tuple"));
        QVERIFY(!other.boolForKey("muteOnJoin_Tuple"));
    }

    void textsOfAnIniFileReadAsTypedValues() {
        // What another process (or an earlier run) left: INI keeps only texts.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("store.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(
            "[General]\nmuteOnJoin_Zoom=false\nmuteOnJoin_Tuple=true\ncount=17\n"
            "mute_hotkey_v2=\"@ByteArray({\\\"keyCode\\\":40,\\\"modifiers\\\":1179648})\"\n");
        file.close();
        QtUserDefaults store(path);
        QVERIFY(!store.boolForKey("muteOnJoin_Zoom"));
        QVERIFY(store.boolForKey("muteOnJoin_Tuple"));
        QCOMPARE(store.integerForKey("count"), std::int64_t{17});
        QCOMPARE(Hotkey::load(store), (Hotkey{40, 0x120000}));
        UserPrefs prefs(store, {});
        QVERIFY(!prefs.muteOnJoinZoom());
    }

    void aDamagedFileReadsAsAbsent() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("store.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General\nmute_hotkey_v2=@ByteArray(not "
                   "json\n\xff\xfe=\x01\nmuteOnJoin_Zoom=a, b, c\n");
        file.close();
        QtUserDefaults store(path);
        QCOMPARE(Hotkey::load(store), Hotkey::defaultHotkey());
        QVERIFY(!store.hasObject("muteOnJoin_Zoom")); // a list is not a value the program writes
        UserPrefs prefs(store, {});
        QVERIFY(prefs.muteOnJoinZoom());
    }

    void keysTranslateToMacCodes_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("reported");
        QTest::addColumn<LocalKeyEvent::Type>("kind");
        QTest::addColumn<int>("code");
        QTest::addColumn<qulonglong>("flags");
        const auto down = LocalKeyEvent::Type::keyDown;
        const auto flags = LocalKeyEvent::Type::flagsChanged;
        const int press = QEvent::KeyPress;
        const int release = QEvent::KeyRelease;
        QTest::newRow("A") << press << int(Qt::Key_A) << 0 << true << down << 0x00 << 0x0ull;
        QTest::newRow("ctrl-shift-K")
            << press << int(Qt::Key_K) << int(Qt::ControlModifier | Qt::ShiftModifier) << true
            << down << 40 << 0x60000ull;
        QTest::newRow("shifted 1 is the 1 key")
            << press << int(Qt::Key_Exclam) << int(Qt::ShiftModifier) << true << down << 0x12
            << 0x20000ull;
        QTest::newRow("super-space") << press << int(Qt::Key_Space) << int(Qt::MetaModifier) << true
                                     << down << 49 << 0x100000ull;
        QTest::newRow("F1") << press << int(Qt::Key_F1) << 0 << true << down << 0x7A << 0x0ull;
        QTest::newRow("keypad 5") << press << int(Qt::Key_5) << int(Qt::KeypadModifier) << true
                                  << down << 0x57 << 0x0ull;
        QTest::newRow("Escape") << press << int(Qt::Key_Escape) << 0 << true << down << 53
                                << 0x0ull;
        QTest::newRow("release of a key")
            << release << int(Qt::Key_A) << 0 << false << down << 0 << 0x0ull;
        QTest::newRow("key without a Mac key")
            << press << int(Qt::Key_Print) << 0 << false << down << 0 << 0x0ull;
        QTest::newRow("alt down") << press << int(Qt::Key_Alt) << 0 << true << flags << 58
                                  << 0x80000ull;
        QTest::newRow("alt up, control held")
            << release << int(Qt::Key_Alt) << int(Qt::AltModifier | Qt::ControlModifier) << true
            << flags << 58 << 0x40000ull;
        QTest::newRow("super down")
            << press << int(Qt::Key_Super_L) << 0 << true << flags << 55 << 0x100000ull;
        QTest::newRow("caps lock")
            << press << int(Qt::Key_CapsLock) << 0 << true << flags << 57 << 0x0ull;
    }
    void keysTranslateToMacCodes() {
        QFETCH(int, type);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(bool, reported);
        QFETCH(LocalKeyEvent::Type, kind);
        QFETCH(int, code);
        QFETCH(qulonglong, flags);
        const QtLocalKeyMonitor monitor;
        const QKeyEvent event(static_cast<QEvent::Type>(type), key,
                              Qt::KeyboardModifiers(modifiers));
        const auto translated = monitor.translate(event);
        QCOMPARE(translated.has_value(), reported);
        if (translated) {
            QCOMPARE(translated->type, kind);
            QCOMPARE(int(translated->keyCode), code);
            QCOMPARE(qulonglong(translated->modifiers), flags);
        }
    }

    void nativeKeyCodesComeFirst() {
        const QtLocalKeyMonitor monitor([](const QKeyEvent& e) -> std::optional<std::uint16_t> {
            return e.nativeScanCode() == 62 ? std::optional<std::uint16_t>(60) : std::nullopt;
        });
        const QKeyEvent rightShift(QEvent::KeyPress, Qt::Key_Shift, Qt::NoModifier, 62, 0, 0);
        QCOMPARE(monitor.translate(rightShift)->keyCode, std::uint16_t{60});
        const QKeyEvent leftShift(QEvent::KeyPress, Qt::Key_Shift, Qt::NoModifier, 50, 0, 0);
        QCOMPARE(monitor.translate(leftShift)->keyCode, std::uint16_t{56});
    }

    void handlersSeeKeysFirstAndMayConsumeThem() {
        QtLocalKeyMonitor monitor;
        QLineEdit field;
        field.show();
        QVERIFY(QTest::qWaitForWindowExposed(&field));
        std::vector<std::uint16_t> seen;
        bool consume = true;
        std::uint64_t token = 0;
        token = monitor.add([&](const LocalKeyEvent& e) {
            seen.push_back(e.keyCode);
            return consume;
        });
        QTest::keyClick(&field, Qt::Key_A);
        QCOMPARE(field.text(), QString());
        QCOMPARE(seen,
                 std::vector<std::uint16_t>{0x00}); // once, though it passed two receivers' filters
        consume = false;
        QTest::keyClick(&field, Qt::Key_B);
        QCOMPARE(field.text(), QStringLiteral("b"));

        // A handler that removes itself while handling a key.
        monitor.remove(token);
        token = monitor.add([&](const LocalKeyEvent& e) {
            seen.push_back(e.keyCode);
            monitor.remove(token);
            return true;
        });
        QTest::keyClick(&field, Qt::Key_C);
        QTest::keyClick(&field, Qt::Key_D);
        QCOMPARE(field.text(), QStringLiteral("bd"));
        QCOMPARE(seen.size(), std::size_t{3});
    }

    void runningApplicationsAreListedOncePerMoment() {
        struct Counting final : RunningApplications {
            mutable int listings = 0;
            std::vector<RunningApplication> runningApplications() const override {
                ++listings;
                return {RunningApplication{"us.zoom.xos", ProcessId{100 + listings}}};
            }
        } inner;
        FakeClock clock;
        const BriefRunningApplicationsCache cache(inner, clock, std::chrono::milliseconds(100));
        QCOMPARE(cache.runningApplications().front().pid, ProcessId{101});
        clock.advance(std::chrono::milliseconds(100));
        QCOMPARE(cache.runningApplications().front().pid, ProcessId{101});
        QCOMPARE(inner.listings, 1);
        clock.advance(std::chrono::milliseconds(1));
        QCOMPARE(cache.runningApplications().front().pid, ProcessId{102});
        // A clock set back does not keep an old listing alive.
        clock.advance(-std::chrono::seconds(5));
        QCOMPARE(cache.runningApplications().front().pid, ProcessId{103});
    }

    void timersRepeatUntilCancelledFromTheirOwnTick() {
        QtTimers timers;
        int ticks = 0;
        TimerId id = 0;
        id = timers.scheduleRepeating(std::chrono::milliseconds(5), [&] {
            if (++ticks == 3) {
                timers.cancel(id);
            }
        });
        QTRY_COMPARE(ticks, 3);
        QTest::qWait(50);
        QCOMPARE(ticks, 3);
        timers.cancel(id); // twice: ignored
        timers.cancel(999);
    }
};

QTEST_MAIN(QtBackendsTest)
#include "QtBackendsTest.moc"
