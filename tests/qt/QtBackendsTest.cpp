// The Qt backends of the ports that carry data: the settings store, the key
// monitor's translation and consumption of keys, and the timers.
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeClock.hpp"
#include "core/UserPrefs.hpp"
#include "hotkey/Hotkey.hpp"
#include "shells/qt/BriefRunningApplicationsCache.hpp"
#include "shells/qt/QtLocalKeyMonitor.hpp"
#include "shells/qt/QtTimers.hpp"
#include "shells/qt/QtUserDefaults.hpp"

#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace hg;

namespace {

QByteArray fileText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// As another program writes the file: in place, behind the store's back.
void writeFile(const QString& path, const QByteArray& text) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

// "<kind> <code> 0x<flags>", or "none" when the monitor reports nothing.
QString translated(const QtLocalKeyMonitor& monitor, const QKeyEvent& event) {
    const auto key = monitor.translate(event);
    if (!key) {
        return QStringLiteral("none");
    }
    const bool down = key->type == LocalKeyEvent::Type::keyDown;
    return QStringLiteral("%1 %2 0x%3")
        .arg(down ? "keyDown" : "flagsChanged")
        .arg(key->keyCode)
        .arg(key->modifiers, 0, 16);
}

} // namespace

class QtBackendsTest : public QObject {
    Q_OBJECT

private slots:
    void valuesReachTheFileAtOnceAndReadBackTyped() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("store.ini"));
        const Hotkey shortcut{40, 0x120000};
        BufferLineSink out;
        QtUserDefaults store(path, out);
        store.setBool("flag", true);
        // Written through while the store still lives: no sync left for later.
        QVERIFY(fileText(path).contains("flag=true"));
        store.setBool("off", false);
        store.setObject("count", DefaultsValue{std::int64_t{-42}});
        store.setObject("ratio", DefaultsValue{2.5});
        store.setObject("name", DefaultsValue{std::string("Grüß, Gremlin")});
        shortcut.save(store);
        store.setBool("gone", true);
        store.removeObject("gone");
        QVERIFY(!fileText(path).contains("gone"));

        // A fresh store reads the texts the INI file keeps as typed values.
        QtUserDefaults fresh(path, out);
        QVERIFY(fresh.boolForKey("flag"));
        QVERIFY(fresh.hasObject("off"));
        QVERIFY(!fresh.boolForKey("off"));
        QCOMPARE(fresh.integerForKey("count"), std::int64_t{-42});
        QCOMPARE(std::stod(fresh.stringForKey("ratio").value_or("0")), 2.5);
        QCOMPARE(fresh.stringForKey("name"), std::optional<std::string>("Grüß, Gremlin"));
        QCOMPARE(Hotkey::load(fresh), shortcut);
        QVERIFY(!fresh.dataForKey(Hotkey::defaultsKey, 3)); // longer than asked for
        QVERIFY(!fresh.hasObject("gone"));
    }

    void aValueWrittenByAnotherProgramIsNeverOverwrittenFromMemory() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("HushGremlin.conf"));
        BufferLineSink out;
        QtUserDefaults store(path, out);
        QVERIFY(!store.hasObject(UserPrefs::zoomKey));
        // Another program writes while this one runs; the preferences'
        // absent-key rule must see it, and so must a later opening.
        writeFile(path, "[General]\nmuteOnJoin_Zoom=false\n");
        UserPrefs prefs(store, {});
        QVERIFY(!prefs.muteOnJoinZoom());
        QVERIFY(fileText(path).contains("muteOnJoin_Zoom=false"));
        QVERIFY(fileText(path).contains("muteOnJoin_Tuple=true"));
        writeFile(path, "[General]\nmuteOnJoin_Tuple=false\nmuteOnJoin_Zoom=true\nmine=kept\n");
        prefs.reload();
        QVERIFY(prefs.muteOnJoinZoom());
        QVERIFY(!prefs.muteOnJoinTuple());
        prefs.setMuteOnJoinZoom(false);
        QCOMPARE(
            fileText(path),
            QByteArray("[General]\nmine=kept\nmuteOnJoin_Tuple=false\nmuteOnJoin_Zoom=false\n"));
    }

    void aSettingsLockHeldElsewhereDelaysTheWriteNotTheProgram() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("HushGremlin.conf"));
        writeFile(path, "[General]\nmuteOnJoin_Zoom=false\n");
        QProcess holder;
        holder.start(QStringLiteral(HG_HOLD_LOCK), {path});
        QVERIFY(holder.waitForReadyRead(10000));
        QCOMPARE(holder.readLine(), QByteArray("locked\n"));

        BufferLineSink out;
        QElapsedTimer took;
        took.start();
        {
            QtUserDefaults store(path, out);
            UserPrefs prefs(store, {}); // writes the absent Tuple key
            prefs.setMuteOnJoinZoom(true);
            prefs.setMuteOnJoinTuple(false);
            // Without the lock QSettings would wait for it for half a minute
            // or more; here only the first write waits, and briefly.
            QVERIFY2(took.elapsed() < 5000, qPrintable(QString::number(took.elapsed())));
            QCOMPARE(store.unsavedCount(), std::size_t{2});
            QVERIFY(store.boolForKey(UserPrefs::zoomKey)); // read back from memory
            QCOMPARE(fileText(path), QByteArray("[General]\nmuteOnJoin_Zoom=false\n"));
            QCOMPARE(out.lines().size(), std::size_t{1});
            QVERIFY2(out.lines()[0].find("Settings: not saved yet: " + path.toStdString() +
                                         ".lock is held by another process") == 0,
                     out.lines()[0].c_str());

            // The other program lets go: the next retry writes both.
            holder.closeWriteChannel();
            QVERIFY(holder.waitForFinished(10000));
            QTRY_COMPARE(store.unsavedCount(), std::size_t{0});
            QCOMPARE(out.lines().back(), "Settings: saved " + path.toStdString());
        }
        QCOMPARE(fileText(path),
                 QByteArray("[General]\nmuteOnJoin_Tuple=false\nmuteOnJoin_Zoom=true\n"));
    }

    void aDamagedFileReadsAsAbsent() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("store.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General\nmute_hotkey_v2=@ByteArray(not "
                   "json\n\xff\xfe=\x01\nmuteOnJoin_Zoom=a, b, c\n");
        file.close();
        BufferLineSink out;
        QtUserDefaults store(path, out);
        QCOMPARE(Hotkey::load(store), Hotkey::defaultHotkey());
        QVERIFY(!store.hasObject("muteOnJoin_Zoom")); // a list is not a value the program writes
        UserPrefs prefs(store, {});
        QVERIFY(prefs.muteOnJoinZoom());
    }

    void keysTranslateToMacCodes() {
        // A native key code, where the platform gives one, comes first: here
        // only scan code 62 has one, the right shift key.
        const QtLocalKeyMonitor monitor([](const QKeyEvent& e) {
            return e.nativeScanCode() == 62 ? std::optional<std::uint16_t>(60) : std::nullopt;
        });
        const auto press = QEvent::KeyPress;
        const auto release = QEvent::KeyRelease;
        const struct {
            QEvent::Type type;
            int key;
            Qt::KeyboardModifiers modifiers;
            const char* expected;
            quint32 scanCode = 0;
        } rows[] = {
            {press, Qt::Key_A, {}, "keyDown 0 0x0"},
            {press, Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier, "keyDown 40 0x60000"},
            {press, Qt::Key_Exclam, Qt::ShiftModifier, "keyDown 18 0x20000"}, // the 1 key
            {press, Qt::Key_Space, Qt::MetaModifier, "keyDown 49 0x100000"},
            {press, Qt::Key_5, Qt::KeypadModifier, "keyDown 87 0x0"},
            {press, Qt::Key_Escape, {}, "keyDown 53 0x0"},
            {release, Qt::Key_A, {}, "none"},
            {press, Qt::Key_Print, {}, "none"}, // no Mac key
            {press, Qt::Key_Alt, {}, "flagsChanged 58 0x80000"},
            {release, Qt::Key_Alt, Qt::AltModifier | Qt::ControlModifier,
             "flagsChanged 58 0x40000"},
            {press, Qt::Key_Super_L, {}, "flagsChanged 55 0x100000"},
            {press, Qt::Key_CapsLock, {}, "flagsChanged 57 0x0"},
            {press, Qt::Key_Shift, {}, "flagsChanged 56 0x20000", 50},
            {press, Qt::Key_Shift, {}, "flagsChanged 60 0x20000", 62},
        };
        int index = 0;
        for (const auto& row : rows) {
            // The row's index leads both sides, so that a failure names its row.
            const QString at = QString::number(index++) + QStringLiteral(": ");
            QCOMPARE(at + translated(monitor, QKeyEvent(row.type, row.key, row.modifiers,
                                                        row.scanCode, 0, 0)),
                     at + row.expected);
        }
    }

    void handlersSeeKeysFirstAndMayConsumeThem() {
        QtLocalKeyMonitor monitor;
        QLineEdit field;
        field.show();
        QVERIFY(QTest::qWaitForWindowExposed(&field));
        std::vector<std::uint16_t> seen;
        bool consume = true;
        std::uint64_t token = monitor.add([&](const LocalKeyEvent& e) {
            seen.push_back(e.keyCode);
            return consume;
        });
        QTest::keyClick(&field, Qt::Key_A);
        consume = false;
        QTest::keyClick(&field, Qt::Key_B);
        QCOMPARE(field.text(), QStringLiteral("b"));
        // Once each, though a key passes the filter for its window and for its widget.
        QCOMPARE(seen, (std::vector<std::uint16_t>{0x00, 0x0B}));

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
        QCOMPARE(seen, (std::vector<std::uint16_t>{0x00, 0x0B, 0x08}));
    }

    void runningApplicationsAreListedOncePerMoment() {
        struct Counting final : RunningApplications {
            mutable int listings = 0;
            std::vector<RunningApplication> runningApplications() const override {
                return {RunningApplication{"us.zoom.xos", ProcessId{100 + ++listings}}};
            }
        } inner;
        FakeClock clock;
        const BriefRunningApplicationsCache cache(inner, clock, std::chrono::milliseconds(100));
        const auto pid = [&cache] { return cache.runningApplications().front().pid; };
        QCOMPARE(pid(), ProcessId{101});
        clock.advance(std::chrono::milliseconds(100));
        QCOMPARE(pid(), ProcessId{101});
        clock.advance(std::chrono::milliseconds(1));
        QCOMPARE(pid(), ProcessId{102});
        // A clock set back does not keep an old listing alive.
        clock.advance(-std::chrono::seconds(5));
        QCOMPARE(pid(), ProcessId{103});
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
