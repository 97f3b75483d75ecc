// The desktop program with the fixture application on a private desktop:
// accessibility granted while it runs, a meeting joined and muted on joining,
// mute toggled from the tray menu, the meeting left, the program quit from
// its menu. The tray menu is reached the way a desktop's tray host reaches
// it: the program's StatusNotifierItem and its exported D-Bus menu.

#include "DesktopSession.hpp"
#include "FixtureApp.hpp"
#include "TrayMenuClient.hpp"
#include "platform/linux/AtspiAccessibility.hpp"
#include "platform/linux/AtspiBus.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace hg::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto patience = 15s;

// Waits until `done` holds, checking every 50 ms; false when time runs out.
template <typename Predicate>
bool eventually(Predicate done, std::chrono::milliseconds limit = patience) {
    const auto deadline = Clock::now() + limit;
    while (!done()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

std::optional<QString> trayMenuPath(const QString& service) {
    QDBusMessage request = QDBusMessage::createMethodCall(
        service, QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    request.setArguments({QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Menu")});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(request, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1) {
        return std::nullopt;
    }
    const QVariant value = reply.arguments().front().value<QDBusVariant>().variant();
    return value.value<QDBusObjectPath>().path();
}

bool hasRow(const TrayMenuClient& menu, const QString& label) {
    const auto rows = menu.rows();
    return rows && std::any_of(rows->begin(), rows->end(),
                               [&](const TrayMenuClient::Row& row) { return row.label == label; });
}

class DesktopEndToEnd : public ::testing::Test {
protected:
    void SetUp() override {
        session_ = DesktopSession::shared();
        if (session_ == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        const auto enabled = status_.isEnabled();
        if (!enabled) {
            GTEST_SKIP() << "the accessibility bus launcher (at-spi2-core) does not answer";
        }
        switchBefore_ = *enabled;
        ASSERT_TRUE(status_.setEnabled(false));
    }
    void TearDown() override {
        if (program_) {
            program_->signal(SIGTERM);
            program_->finish(5s);
        }
        if (switchBefore_) {
            EXPECT_TRUE(status_.setEnabled(*switchBefore_));
        }
    }

    DesktopSession* session_ = nullptr;
    AtspiBus status_;
    std::optional<bool> switchBefore_;
    std::unique_ptr<ChildProcess> program_;
};

TEST_F(DesktopEndToEnd, GrantMuteOnJoinToggleFromTheMenuLeaveAndQuit) {
    ChildProcess watcher(ChildProcess::Spec{.argv = {HG_FAKE_SNI_WATCHER},
                                            .stderrPath = session_->scratchDir() + "/watcher.log",
                                            .pipeStdin = true,
                                            .pipeStdout = true});
    ASSERT_TRUE(watcher.waitForLine("watching", patience)) << "no StatusNotifierWatcher";

    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    std::string whyNot;
    const auto zoom = FixtureApp::start(ax, whyNot);
    ASSERT_NE(zoom, nullptr) << whyNot;

    // Accessibility is off, and the program is not started "always on": it
    // has to wait for the switch.
    program_ = std::make_unique<ChildProcess>(ChildProcess::Spec{
        .argv = {HG_DESKTOP_PROGRAM},
        .environment = {"HUSHGREMLIN_APP_IDENTITIES=us.zoom.xos=" + zoom->processName(),
                        "QT_QPA_PLATFORM=xcb"},
        .stderrPath = session_->scratchDir() + "/hushgremlin.log",
        .pipeStdout = true});
    ChildProcess& program = *program_;
    ASSERT_TRUE(program.waitForLine("GOT AX:  false", patience));

    const auto item = watcher.waitForLine("item ", patience);
    ASSERT_TRUE(item) << "the tray icon never registered";
    const QString service = QString::fromStdString(item->substr(5, item->find(' ', 5) - 5));
    const auto menuPath = trayMenuPath(service);
    ASSERT_TRUE(menuPath);
    const TrayMenuClient menu(service, *menuPath);
    // Zoom runs, but cannot be read yet.
    EXPECT_TRUE(eventually([&] { return hasRow(menu, QStringLiteral("Setup Required...")); }));

    ASSERT_TRUE(status_.setEnabled(true));
    ASSERT_TRUE(program.waitForLine("SET TRUE noMeeting", patience));
    EXPECT_TRUE(eventually([&] { return hasRow(menu, QStringLiteral("No meeting detected")); }));

    zoom->command("join");
    ASSERT_TRUE(program.waitForLine("TOGGLING (auto-mute on join for Zoom)", patience));
    EXPECT_TRUE(eventually([&] { return zoom->state() == "muted"; }));

    ASSERT_TRUE(eventually([&] { return hasRow(menu, QStringLiteral("Toggle Mute")); }));
    ASSERT_TRUE(menu.click(QStringLiteral("Toggle Mute")));
    EXPECT_TRUE(eventually([&] { return zoom->state() == "unmuted"; }));

    zoom->command("leave");
    EXPECT_TRUE(eventually([&] { return hasRow(menu, QStringLiteral("No meeting detected")); }));

    ASSERT_TRUE(menu.click(QStringLiteral("Quit")));
    EXPECT_TRUE(program.waitForLine("Goodbye cruel world!", patience));
    EXPECT_TRUE(eventually([&] { return program.hasExited(); }));

    EXPECT_THAT(program.linesRead(),
                ::testing::IsSupersetOf({"setup binding...", "Starting watcher", "GOT AX:  false",
                                         "SET TRUE noMeeting", "AX ACQUIRED true",
                                         "TOGGLING (auto-mute on join for Zoom)", "GETTING BUTTON",
                                         "Goodbye cruel world!"}));
    // Nothing about the menu walk failed on the way.
    for (const auto& line : program.linesRead()) {
        EXPECT_THAT(line, ::testing::Not(::testing::HasSubstr("error")));
    }
}

} // namespace
} // namespace hg::test
