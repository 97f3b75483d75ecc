// The X11 shortcut tap on the private display, typed into with xdotool while
// a window of this process has the keyboard focus.

#include "backends/linux/X11EventTap.hpp"

#include "DesktopSession.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/StoredHotkey.hpp"
#include "ports/ModifierKeys.hpp"

#include <QKeyEvent>
#include <QRasterWindow>
#include <gtest/gtest.h>
#include <map>

namespace hg {
namespace {

using namespace std::chrono_literals;
using test::xdotool;

// X11 key codes of the keys the tests type; grave is the one settle() types.
constexpr quint32 keyK = 45, keyA = 38, keyF5 = 71, controlL = 37, altL = 64, grave = 49;

// Counts the keys it receives by X11 key code, standing for whatever
// application the user types into.
class VictimWindow final : public QRasterWindow {
public:
    std::map<quint32, int> presses;
    std::map<quint32, int> releases;

protected:
    void keyPressEvent(QKeyEvent* event) override { ++presses[event->nativeScanCode()]; }
    void keyReleaseEvent(QKeyEvent* event) override { ++releases[event->nativeScanCode()]; }
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
    static bool reaches(const int& count, int n) {
        return test::waitUntil([&] { return count >= n; }, 5s);
    }
    // Types a key no shortcut uses and waits until the window has its
    // release: every event sent before has then been handled.
    bool settle() {
        const int before = victim_->releases[grave];
        xdotool({"key", "grave"});
        return reaches(victim_->releases[grave], before + 1);
    }

    FakeUserDefaults defaults_;
    BufferLineSink out_;
    StoredHotkey shortcut_{defaults_};
    X11EventTap tap_{shortcut_, out_};
    GlobalHotkeyMonitor monitor_{tap_, defaults_, out_};
    std::unique_ptr<VictimWindow> victim_;
    int downs_ = 0;
    int ups_ = 0;
};

TEST_F(X11EventTapTest, OnePressGivesOneDownAndOneUpAndOtherKeysReachTheFocusedWindow) {
    useShortcut({40, modifier::command});
    ASSERT_TRUE(monitor_.isRunning());

    xdotool({"keydown", "super", "keydown", "k"});
    ASSERT_TRUE(reaches(downs_, 1));
    xdotool({"key", "a"});
    ASSERT_TRUE(reaches(victim_->releases[keyA], 1))
        << "a key typed while the shortcut is held reaches the window";
    xdotool({"keyup", "k"});
    ASSERT_TRUE(reaches(ups_, 1));
    xdotool({"keyup", "super"});
    ASSERT_TRUE(settle());

    EXPECT_EQ(downs_, 1);
    EXPECT_EQ(ups_, 1);
    EXPECT_EQ(victim_->presses[keyK], 0) << "the shortcut's press is removed";
    EXPECT_EQ(victim_->presses[keyA], 1);

    // With shift held too it is not the shortcut: the K goes on.
    xdotool(
        {"keydown", "super", "keydown", "shift", "key", "k", "keyup", "shift", "keyup", "super"});
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 1);
    EXPECT_EQ(victim_->presses[keyK], 1);
    EXPECT_TRUE(out_.lines().empty());
}

TEST_F(X11EventTapTest, AutoRepeatGivesNothingMoreAndTheRepeatsGoOn) {
    useShortcut({40, modifier::command});
    xdotool({"keydown", "super", "keydown", "k"});
    ASSERT_TRUE(reaches(downs_, 1));
    // The server repeats a held key after its repeat delay; every repeat is
    // caught by the grab again and must be handed on.
    ASSERT_TRUE(reaches(victim_->presses[keyK], 2)) << "the repeats reach the window";
    xdotool({"keyup", "k", "keyup", "super"});
    ASSERT_TRUE(reaches(ups_, 1));
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
    ASSERT_TRUE(reaches(downs_, 1));
    xdotool({"key", "a"});
    ASSERT_TRUE(reaches(victim_->releases[keyA], 1));
    xdotool({"keyup", "alt"});
    ASSERT_TRUE(reaches(ups_, 1));
    xdotool({"keyup", "ctrl"});
    ASSERT_TRUE(settle());
    EXPECT_EQ(victim_->presses[controlL], 1) << "the first modifier goes on";
    EXPECT_EQ(victim_->presses[altL], 0) << "the one that completes the shortcut is removed";

    xdotool({"keydown", "alt", "keydown", "ctrl"});
    ASSERT_TRUE(reaches(downs_, 2));
    xdotool({"keyup", "ctrl"});
    ASSERT_TRUE(reaches(ups_, 2));
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
    ASSERT_TRUE(reaches(ups_, 2));
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 2);
    EXPECT_EQ(victim_->presses[keyF5], 0);
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
    EXPECT_EQ(victim_->presses[keyK], 1);

    monitor_.start();
    monitor_.start(); // a second start replaces the tap
    typeCommandK();
    ASSERT_TRUE(reaches(ups_, 1));
    EXPECT_EQ(downs_, 1);

    Hotkey{0x60, 0}.save(defaults_); // F5, without telling the tap
    xdotool({"key", "a"});           // any keystroke makes the tap look again
    ASSERT_TRUE(reaches(victim_->releases[keyA], 1));
    xdotool({"key", "F5"});
    ASSERT_TRUE(reaches(ups_, 2));
    typeCommandK();
    ASSERT_TRUE(settle());
    EXPECT_EQ(downs_, 2) << "the old shortcut is let go";
    EXPECT_EQ(victim_->presses[keyK], 2);
}

} // namespace
} // namespace hg
