// The desktop program on a Wayland desktop without a tray: its shortcut run
// by the desktop's GlobalShortcuts portal (a stand-in on the private bus), a
// notice about the missing icon, and the program scripted through its own
// command line, with the fixture meeting application as the judge.

#include "DesktopSession.hpp"
#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/AtspiBus.hpp"

#include <QProcess>
#include <QSettings>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace hg::test {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::Not;

struct Answer {
    int exitCode = -1;
    std::string output;
};

// `hushgremlin WORD`, as a script runs it.
Answer command(const char* word) {
    QProcess client;
    client.start(QStringLiteral(HG_DESKTOP_PROGRAM), {QString::fromLatin1(word)});
    client.waitForFinished(15000);
    return {client.exitCode(), client.readAllStandardOutput().trimmed().toStdString()};
}

class WaylandDesktop : public ::testing::Test {
protected:
    void SetUp() override {
        if (DesktopSession::shared() == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        makeQtApplication();
        before_ = switch_.isEnabled();
        if (!before_) {
            GTEST_SKIP() << "the accessibility bus launcher (at-spi2-core) does not answer";
        }
        ASSERT_TRUE(switch_.setEnabled(true));
        portal_ = std::make_unique<ChildProcess>(std::vector<std::string>{HG_FAKE_DESKTOP_PORTAL});
        ASSERT_TRUE(portal_->waitForLine("serving")) << "no stand-in portal";
        std::string whyNot;
        zoom_ = FixtureApp::start(ax_, whyNot);
        ASSERT_NE(zoom_, nullptr) << whyNot;
    }
    void TearDown() override {
        if (before_) {
            EXPECT_TRUE(switch_.setEnabled(*before_));
        }
    }

    bool zoomBecomes(const std::string& state) {
        return waitUntil([&] { return zoom_->state() == state; });
    }

    AtspiBus switch_;
    std::optional<bool> before_;
    AtspiAccessibility ax_{AtspiAccessibility::Options{.alwaysOn = true}};
    std::unique_ptr<ChildProcess> portal_;
    std::unique_ptr<FixtureApp> zoom_;
};

TEST_F(WaylandDesktop, ThePortalAndTheCommandLinePushToTalkAndTheProgramRunsOnce) {
    EXPECT_EQ(command("status").exitCode, 1);
    EXPECT_EQ(command("status").output, "HushGremlin is not running");

    const std::string config = DesktopSession::shared()->scratchDir() + "/wayland-config";
    QSettings(QString::fromStdString(config + "/HushGremlin/HushGremlin.conf"),
              QSettings::IniFormat)
        .setValue("mute_hotkey_v2", QByteArray(R"({"keyCode":40,"modifiers":262144})"));
    zoom_->command("join muted");
    const std::vector<std::string> start{"env",
                                         "HUSHGREMLIN_TEST_APP_IDENTITIES=us.zoom.xos=" +
                                             zoom_->processName(),
                                         "XDG_SESSION_TYPE=wayland",
                                         "HUSHGREMLIN_TRAY_WAIT=0",
                                         "QT_QPA_PLATFORM=xcb",
                                         "XDG_CONFIG_HOME=" + config,
                                         HG_DESKTOP_PROGRAM};
    ChildProcess program(start, DesktopSession::shared()->scratchDir() + "/hushgremlin.log");

    EXPECT_TRUE(portal_->waitForLine("bound push-to-talk CTRL+k"));
    EXPECT_THAT(portal_->linesRead(),
                ::testing::IsSupersetOf({"registered app.hushgremlin.HushGremlin",
                                         "notify HushGremlin runs without its tray icon"}));
    ASSERT_TRUE(program.waitForLine("The desktop's shortcut portal runs the shortcut"));
    ASSERT_TRUE(waitUntil([] { return command("status").output == "onMute"; }));
    const int before = zoom_->presses();

    // Held through the portal, which repeats its press while the key is down.
    portal_->send("down");
    portal_->send("down");
    EXPECT_TRUE(zoomBecomes("unmuted"));
    std::this_thread::sleep_for(300ms);
    portal_->send("up");
    EXPECT_TRUE(zoomBecomes("muted"));
    EXPECT_EQ(zoom_->presses(), before + 2);
    // A double tap leaves the microphone open.
    portal_->send("down\nup\ndown\nup");
    EXPECT_TRUE(waitUntil([&] { return zoom_->presses() >= before + 5; }));
    EXPECT_EQ(zoom_->state(), "unmuted");

    // A key binding of another desktop: press and release by command.
    EXPECT_EQ(command("press").exitCode, 0);
    EXPECT_TRUE(zoomBecomes("muted"));
    EXPECT_EQ(command("status").output, "onMute");
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(command("release").exitCode, 0);
    EXPECT_TRUE(zoomBecomes("unmuted"));
    EXPECT_EQ(command("status").output, "offMute");
    EXPECT_EQ(zoom_->presses(), before + 7);
    // The debug panel, out of the menu's reach where Alt+click is the window
    // manager's.
    EXPECT_EQ(command("debug").exitCode, 0);

    ChildProcess second(start);
    EXPECT_TRUE(second.waitForLine("HushGremlin is already running: its preferences are shown"));
    EXPECT_TRUE(second.waitForExit(patience));

    program.signal(SIGTERM);
    EXPECT_TRUE(program.waitForLine("Goodbye cruel world!"));
    for (const auto& line : program.linesRead()) {
        EXPECT_THAT(line, Not(AnyOf(HasSubstr("ERR"), HasSubstr("Failed"), HasSubstr("error"))));
    }
}

} // namespace
} // namespace hg::test
