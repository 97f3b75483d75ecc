#include "platform/linux/X11EventTap.hpp"

#include "X11TestDesktop.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/ModifierKeys.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <QGuiApplication>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <xcb/xcb.h>

namespace hg {
namespace {

using test::X11TestDesktop;

// X11 key codes of the keys the tests type.
constexpr quint32 keyK = 45, keyA = 38, keyF5 = 71, controlL = 37, altL = 64;

// Puts `keysym` alone on `keyCode` of the server's keyboard mapping, from a
// connection of its own; 0 clears the key.
void mapKey(std::uint8_t keyCode, std::uint32_t keysym) {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    const auto cookie = xcb_get_keyboard_mapping(c, keyCode, 1);
    xcb_get_keyboard_mapping_reply_t* reply = xcb_get_keyboard_mapping_reply(c, cookie, nullptr);
    const std::uint8_t per = reply != nullptr ? reply->keysyms_per_keycode : 1;
    std::free(reply);
    std::vector<xcb_keysym_t> syms(per, 0);
    syms[0] = keysym;
    xcb_change_keyboard_mapping(c, 1, keyCode, per, syms.data());
    free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); // round trip
    xcb_disconnect(c);
}

class X11EventTapTest : public ::testing::Test {
protected:
    void SetUp() override {
        desktop_ = X11TestDesktop::shared();
        if (desktop_ == nullptr) {
            GTEST_SKIP() << "no X server for the keyboard tests: " << X11TestDesktop::skipReason();
        }
        desktop_->victim().keys.clear();
        monitor_.onDown = [this] { ++downs_; };
        monitor_.onUp = [this] { ++ups_; };
    }
    void TearDown() override {
        monitor_.stop();
        if (desktop_ != nullptr) {
            // Nothing may stay pressed for the next test.
            X11TestDesktop::xdotool({"keyup", "super", "keyup", "shift", "keyup", "ctrl", "keyup",
                                     "alt", "keyup", "k", "keyup", "a"});
            desktop_->settle();
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
        return X11TestDesktop::waitUntil([&] { return downs_ >= n; });
    }
    bool waitForUps(int n) {
        return X11TestDesktop::waitUntil([&] { return ups_ >= n; });
    }
    static void xdotool(std::initializer_list<std::string> arguments) {
        X11TestDesktop::xdotool(arguments);
    }
    test::VictimWindow& victim() { return desktop_->victim(); }

    X11TestDesktop* desktop_ = nullptr;
    FakeUserDefaults defaults_;
    BufferLineSink out_;
    X11EventTap tap_{defaults_, out_};
    GlobalHotkeyMonitor monitor_{tap_, defaults_, out_};
    int downs_ = 0;
    int ups_ = 0;
};

TEST_F(X11EventTapTest, KeyShortcutGivesOneDownAndOneUpAndOtherKeysReachTheFocusedWindow) {
    useShortcut({40, modifier::command});
    ASSERT_TRUE(monitor_.isRunning());

    xdotool({"keydown", "super", "keydown", "k"});
    ASSERT_TRUE(waitForDowns(1));
    xdotool({"key", "a"});
    ASSERT_TRUE(X11TestDesktop::waitUntil([&] { return victim().releases(keyA) == 1; }))
        << "a key typed while the shortcut is held reaches the window";
    xdotool({"keyup", "k"});
    ASSERT_TRUE(waitForUps(1));
    xdotool({"keyup", "super"});
    ASSERT_TRUE(desktop_->settle());

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
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 0);
    EXPECT_EQ(victim().presses(keyK), 1);
}

TEST_F(X11EventTapTest, AutoRepeatGivesNothingMoreAndTheRepeatsGoOn) {
    useShortcut({40, modifier::command});
    xdotool({"keydown", "super", "keydown", "k"});
    ASSERT_TRUE(waitForDowns(1));
    // The server repeats a held key after its repeat delay; every repeat is
    // caught by the grab again and must be handed on.
    ASSERT_TRUE(X11TestDesktop::waitUntil([&] { return victim().presses(keyK) >= 2; }))
        << "the repeats reach the window";
    xdotool({"keyup", "k", "keyup", "super"});
    ASSERT_TRUE(waitForUps(1));
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 1);
    EXPECT_EQ(ups_, 1);
}

TEST_F(X11EventTapTest, ModifierOnlyShortcutFiresInEitherOrder) {
    useShortcut({Hotkey::noKey, modifier::control | modifier::option});

    xdotool({"keydown", "ctrl"});
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 0) << "control alone";
    xdotool({"keydown", "alt"});
    ASSERT_TRUE(waitForDowns(1));
    xdotool({"key", "a"});
    ASSERT_TRUE(X11TestDesktop::waitUntil([&] { return victim().releases(keyA) == 1; }));
    xdotool({"keyup", "alt"});
    ASSERT_TRUE(waitForUps(1));
    xdotool({"keyup", "ctrl"});
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(victim().presses(controlL), 1) << "the first modifier goes on";
    EXPECT_EQ(victim().presses(altL), 0) << "the one that completes the shortcut is removed";

    xdotool({"keydown", "alt", "keydown", "ctrl"});
    ASSERT_TRUE(waitForDowns(2));
    xdotool({"keyup", "ctrl"});
    ASSERT_TRUE(waitForUps(2));
    xdotool({"keyup", "alt"});
    ASSERT_TRUE(desktop_->settle());
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
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 2);
    EXPECT_EQ(victim().presses(keyF5), 0);
}

TEST_F(X11EventTapTest, FnWorksWhereTheKeymapHasAnFnKey) {
    // Xvfb's keymap puts XF86Fn above the protocol's 8-bit key codes, where
    // X never reports it; a user's keymap may move it lower, as here.
    constexpr std::uint8_t spare = 253;
    mapKey(spare, 0x100811D0);
    useShortcut(Hotkey::defaultHotkey());
    ASSERT_FALSE(tap_.grabs().empty());

    xdotool({"keydown", "XF86Fn"});
    ASSERT_TRUE(waitForDowns(1));
    xdotool({"keyup", "XF86Fn"});
    ASSERT_TRUE(waitForUps(1));
    xdotool({"keydown", "ctrl", "key", "XF86Fn", "keyup", "ctrl"});
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 1) << "fn with control held is not fn alone";
    EXPECT_EQ(ups_, 1);

    mapKey(spare, 0);
    tap_.refresh();
    EXPECT_TRUE(tap_.grabs().empty());
}

TEST_F(X11EventTapTest, WithoutAnFnKeyTheDefaultShortcutSaysSo) {
    monitor_.start();
    EXPECT_TRUE(monitor_.isRunning());
    EXPECT_TRUE(tap_.grabs().empty());
    EXPECT_EQ(out_.lines(),
              std::vector<std::string>{
                  "No key of this keyboard gives the shortcut under X11; record another one"});
}

TEST_F(X11EventTapTest, ANewlyStoredShortcutWorksFromTheNextKeystroke) {
    useShortcut({40, modifier::command});
    Hotkey{0x60, 0}.save(defaults_); // F5, without telling the tap
    xdotool({"key", "a"});           // any keystroke makes the tap look again
    ASSERT_TRUE(X11TestDesktop::waitUntil([&] { return victim().releases(keyA) == 1; }));
    xdotool({"key", "F5"});
    ASSERT_TRUE(waitForUps(1));
    EXPECT_EQ(downs_, 1);
    xdotool({"keydown", "super", "key", "k", "keyup", "super"});
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 1) << "the old shortcut is let go";
    EXPECT_EQ(victim().presses(keyK), 1);
}

TEST_F(X11EventTapTest, AStoppedMonitorGrabsNothing) {
    useShortcut({40, modifier::command});
    monitor_.stop();
    EXPECT_TRUE(tap_.grabs().empty());
    xdotool({"keydown", "super", "key", "k", "keyup", "super"});
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 0);
    EXPECT_EQ(victim().presses(keyK), 1);

    monitor_.start();
    monitor_.start(); // a second start replaces the tap
    xdotool({"keydown", "super", "key", "k", "keyup", "super"});
    ASSERT_TRUE(waitForUps(1));
    ASSERT_TRUE(desktop_->settle());
    EXPECT_EQ(downs_, 1);
}

} // namespace
} // namespace hg
