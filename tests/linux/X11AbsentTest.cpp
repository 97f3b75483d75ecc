// Without an X11 display (a Wayland session, or no display at all) there are
// no global grabs and no keymap to read: the tap refuses to install, so the
// monitor prints its failure line, and key names fall back.

#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "backends/linux/X11EventTap.hpp"
#include "backends/linux/XkbKeyboardLayout.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "hotkey/KeyName.hpp"
#include "hotkey/StoredHotkey.hpp"

#include <QGuiApplication>
#include <cstdlib>
#include <gtest/gtest.h>

namespace hg {
namespace {

TEST(X11Absent, TheTapIsRefusedAndKeyNamesFallBack) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    int argc = 1;
    char name[] = "hg-no-x11";
    char* argv[] = {name, nullptr};
    QGuiApplication application(argc, argv);

    FakeUserDefaults defaults;
    BufferLineSink out;
    StoredHotkey shortcut(defaults);
    X11EventTap tap(shortcut, out);
    GlobalHotkeyMonitor monitor(tap, defaults, out);
    monitor.start();
    EXPECT_FALSE(monitor.isRunning());
    EXPECT_EQ(out.lines(),
              std::vector<std::string>{
                  "Failed to create event tap \u2014 check Accessibility permissions"});
    tap.setEnabled(true); // nothing installed: ignored
    tap.remove();

    const XkbKeyboardLayout layout;
    EXPECT_FALSE(layout.hasKeymap());
    EXPECT_EQ(layout.displayText(0), std::nullopt);
    EXPECT_EQ(keyName(0, &layout), "<0>");
}

} // namespace
} // namespace hg
