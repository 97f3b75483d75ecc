// The X11 shortcut tap on the private display, typed into with xdotool while
// a window of this process has the keyboard focus.

#include "platform/linux/X11EventTap.hpp"

#include "DesktopSession.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/ModifierKeys.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <QKeyEvent>
#include <QPainter>
#include <QRasterWindow>
#include <gtest/gtest.h>

namespace hg {
namespace {

using namespace std::chrono_literals;
using test::xdotool;

// X11 key codes of the keys the tests type; grave is the one settle() types.
constexpr quint32 keyK = 45, keyA = 38, keyF5 = 71, controlL = 37, altL = 64, grave = 49;

// Records the keys it receives, standing for whatever application the user
// types into.
class VictimWindow final : public QRasterWindow {
public:
    [[nodiscard]] int count(bool press, quint32 x11KeyCode) const {
        return static_cast<int>(std::count(keys_.begin(), keys_.end(), Key{press, x11KeyCode}));
    }
    [[nodiscard]] int presses(quint32 x11KeyCode) const { return count(true, x11KeyCode); }
    [[nodiscard]] int releases(quint32 x11KeyCode) const { return count(false, x11KeyCode); }

protected:
    using Key = std::pair<bool, quint32>;
    void keyPressEvent(QKeyEvent* event) override {
        keys_.emplace_back(true, event->nativeScanCode());
    }
    void keyReleaseEvent(QKeyEvent* event) override {
        keys_.emplace_back(false, event->nativeScanCode());
    }
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(0, 0, width(), height(), Qt::white);
    }

private:
    std::vector<Key> keys_;
};

class X11EventTapTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!test::makeQtApplication(true)) {
            GTEST_SKIP() << "no X server for the keyboard tests: "
                         << test::DesktopSession::skipReason();
        }
        victim_ = std::make_unique<VictimWindow>();
        victim_->setGeometry(0, 0, 320, 240);
        victim_->show();
        victim_->requestActivate();
        ASSERT_TRUE(test::waitUntil([&] { return victim_->isExposed() && victim_->isActive(); }))
            << "the test window never got the keyboard focus";
        monitor_.onDown = [this] { ++downs_; };
        monitor_.onUp = [this] { ++ups_; };
    }
    void TearDown() override {
        monitor_.stop();
        if (victim_) {
            // Nothing may stay pressed for the next test.
            xdotool({"keyup", "super", "keyup", "shift", "keyup", "ctrl", "keyup", "alt", "keyup",
                     "k", "keyup", "a"});
            settle();
        }
    }

    void useShortcut(Hotkey hotkey) {
        hotkey.save(defaults_);
        if (!monitor_.isRunning()) {
            monitor_.start();
        }
        tap_.refresh();
    }
    bool waitForDowns(int n) {
        return test::waitUntil([&] { return downs_ >= n; }, 5s);
    }
    bool waitForUps(int n) {
        return test::waitUntil([&] { return ups_ >= n; }, 5s);
    }
    bool waitForRelease(quint32 x11KeyCode, int n) {
        return test::waitUntil([&] { return victim().releases(x11KeyCode) >= n; }, 5s);
    }
    // Types a key no shortcut uses and waits until the window has its
    // release: every event sent before has then been handled.
    bool settle() {
        const int before = victim().releases(grave);
        xdotool({"key", "grave"});
        return waitForRelease(grave, before + 1);
    }
    VictimWindow& victim() { return *victim_; }

    FakeUserDefaults defaults_;
    BufferLineSink out_;
    X11EventTap tap_{defaults_, out_};
    GlobalHotkeyMonitor monitor_{tap_, defaults_, out_};
    std::unique_ptr<VictimWindow> victim_;
    int downs_ = 0;
    int ups_ = 0;
};

TEST_F(X11EventTapTest, KeyShortcutGivesOneDownAndOneUpAndOtherKeysReachTheFocusedWindow) {
    useShortcut({40, modifier::command});
    ASSERT_TRUE(monitor_.isRunning());

    xdotool({"keydown", "super", "keydown", "k"});
    ASSERT_TRUE(waitForDowns(1));
    xdotool({"key", "a"});
    ASSERT_TRUE(waitForRelease(keyA, 1))
        << "a key typed while the shortcut is held reaches the window";
    xdotool({"keyup", "k"});
    ASSERT_TRUE(waitForUps(1));
    xdotool({"keyup", "super"});
    ASSERT_TRUE(settle());

    EXPECT_EQ(downs_, 1);
    EXPECT_EQ(ups_, 1);
    EXPECT_EQ(victim().presses(keyK), 0) << "the shortcut's press is removed";
    EXPECT_EQ(victim().presses(keyA), 1);
    EXPECT_TRUE(out_.lines().empty());
}

TEST_F(X11EventTapTest, AnExtraModifierDoesNotFireAndTheKeyGoesOn) {
    useShortcut({40, modifier::command});
    xdotool(
        {"keydown", "super", "keydown", "shift", "key", "k", "keyup", "shift", "keyup", "super"});
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 0);
    EXPECT_EQ(victim().presses(keyK), 1);
}

TEST_F(X11EventTapTest, AutoRepeatGivesNothingMoreAndTheRepeatsGoOn) {
    useShortcut({40, modifier::command});
    xdotool({"keydown", "super", "keydown", "k"});
    ASSERT_TRUE(waitForDowns(1));
    // The server repeats a held key after its repeat delay; every repeat is
    // caught by the grab again and must be handed on.
    ASSERT_TRUE(test::waitUntil([&] { return victim().presses(keyK) >= 2; }))
        << "the repeats reach the window";
    xdotool({"keyup", "k", "keyup", "super"});
    ASSERT_TRUE(waitForUps(1));
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 1);
    EXPECT_EQ(ups_, 1);
}

TEST_F(X11EventTapTest, ModifierOnlyShortcutFiresInEitherOrder) {
    useShortcut({Hotkey::noKey, modifier::control | modifier::option});

    xdotool({"keydown", "ctrl"});
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 0) << "control alone";
    xdotool({"keydown", "alt"});
    ASSERT_TRUE(waitForDowns(1));
    xdotool({"key", "a"});
    ASSERT_TRUE(waitForRelease(keyA, 1));
    xdotool({"keyup", "alt"});
    ASSERT_TRUE(waitForUps(1));
    xdotool({"keyup", "ctrl"});
    ASSERT_TRUE(settle());
    EXPECT_EQ(victim().presses(controlL), 1) << "the first modifier goes on";
    EXPECT_EQ(victim().presses(altL), 0) << "the one that completes the shortcut is removed";

    xdotool({"keydown", "alt", "keydown", "ctrl"});
    ASSERT_TRUE(waitForDowns(2));
    xdotool({"keyup", "ctrl"});
    ASSERT_TRUE(waitForUps(2));
    xdotool({"keyup", "alt"});
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 2);
    EXPECT_EQ(ups_, 2);
}

TEST_F(X11EventTapTest, LockKeysDoNotMatter) {
    useShortcut({0x60, 0}); // F5
    for (const char* lock : {"Num_Lock", "Caps_Lock"}) {
        xdotool({"key", lock});
        xdotool({"key", "F5"});
        xdotool({"key", lock});
    }
    ASSERT_TRUE(waitForUps(2));
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 2);
    EXPECT_EQ(victim().presses(keyF5), 0);
}

TEST_F(X11EventTapTest, WithoutAnFnKeyTheDefaultShortcutSaysSo) {
    monitor_.start();
    EXPECT_TRUE(monitor_.isRunning());
    EXPECT_TRUE(tap_.grabs().empty());
    EXPECT_EQ(out_.lines(),
              std::vector<std::string>{
                  "No key of this keyboard gives the shortcut under X11; record another one"});
}

TEST_F(X11EventTapTest, AStoppedMonitorGrabsNothingAndANewShortcutWorksFromTheNextKeystroke) {
    const auto typeCommandK = [] { xdotool({"keydown", "super", "key", "k", "keyup", "super"}); };
    useShortcut({40, modifier::command});
    monitor_.stop();
    EXPECT_TRUE(tap_.grabs().empty());
    typeCommandK();
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 0);
    EXPECT_EQ(victim().presses(keyK), 1);

    monitor_.start();
    monitor_.start(); // a second start replaces the tap
    typeCommandK();
    ASSERT_TRUE(waitForUps(1));
    EXPECT_EQ(downs_, 1);

    Hotkey{0x60, 0}.save(defaults_); // F5, without telling the tap
    xdotool({"key", "a"});           // any keystroke makes the tap look again
    ASSERT_TRUE(waitForRelease(keyA, 1));
    xdotool({"key", "F5"});
    ASSERT_TRUE(waitForUps(2));
    typeCommandK();
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 2) << "the old shortcut is let go";
    EXPECT_EQ(victim().presses(keyK), 2);
}

} // namespace
} // namespace hg
