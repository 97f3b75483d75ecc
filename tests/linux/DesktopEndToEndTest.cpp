// Trust on Linux: the accessibility bus is reachable and the desktop's switch
// is on. Then the desktop program with the fixture application, its tray menu
// reached the way a desktop's tray host reaches it: the program's
// StatusNotifierItem and its exported com.canonical.dbusmenu menu.

#include "DesktopSession.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/linux/AtspiAccessibility.hpp"
#include "backends/linux/AtspiBus.hpp"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QSettings>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace hg::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

// The desktop's accessibility switch is off for each case, and put back after.
class AtspiTrust : public ::testing::Test {
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
        ASSERT_TRUE(switch_.setEnabled(false));
    }
    void TearDown() override {
        if (before_) {
            EXPECT_TRUE(switch_.setEnabled(*before_));
            EXPECT_EQ(switch_.isEnabled(), before_);
        }
    }

    AtspiBus switch_;
    std::optional<bool> before_;
};

TEST_F(AtspiTrust, FollowsTheDesktopSwitchAndOnlyThePromptTurnsItOn) {
    // Applications that export their tree anyway need no switch.
    AtspiAccessibility alwaysOn(AtspiAccessibility::Options{.alwaysOn = true});
    EXPECT_TRUE(alwaysOn.isProcessTrusted(false));
    EXPECT_TRUE(alwaysOn.isProcessTrusted(true));
    EXPECT_EQ(switch_.isEnabled(), false) << "a trusted process prompted anyway";

    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = false});
    EXPECT_FALSE(ax.isProcessTrusted(false));
    EXPECT_EQ(switch_.isEnabled(), false) << "asking without a prompt changed the switch";

    // Like the permission dialog, the prompt's answer is the one from before it.
    EXPECT_FALSE(ax.isProcessTrusted(true));
    EXPECT_EQ(switch_.isEnabled(), true);
    EXPECT_TRUE(ax.isProcessTrusted(false));

    // Once read, the switch is followed by its change signal: asking again
    // costs no round trip, and a change made elsewhere still shows.
    const auto trips = ax.roundTrips();
    EXPECT_TRUE(ax.isProcessTrusted(false));
    EXPECT_EQ(ax.roundTrips(), trips);
    ASSERT_TRUE(switch_.setEnabled(false));
    EXPECT_TRUE(waitUntil([&] { return !ax.isProcessTrusted(false); }));
    ASSERT_TRUE(switch_.setEnabled(true));
    EXPECT_TRUE(waitUntil([&] { return ax.isProcessTrusted(false); }));
}

TEST_F(AtspiTrust, AnUnreachableBusIsDisabledAccessibilityAndNeverPrompts) {
    ::setenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent/hg-a11y-bus", 1);
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    FakeRunningApplications apps;
    BufferLineSink out;
    AXAccess access(ax, apps, out);
    EXPECT_FALSE(ax.isProcessTrusted(true));
    try {
        (void)access.copyMenuBar(static_cast<ProcessId>(::getpid()));
        ADD_FAILURE() << "read through a bus that is not there";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::apiDisabled);
    }
    EXPECT_TRUE(ax.registeredProcessIds().empty());
    ::unsetenv("AT_SPI_BUS_ADDRESS");
    EXPECT_THAT(out.take(), ElementsAre("DISABELD"));
    EXPECT_EQ(switch_.isEnabled(), false);
}

// A remote object called with plain messages. (A QDBusInterface would read
// the object's interface and build a meta-object the connection keeps to the
// end, which the leak checker reports.)
struct RemoteObject {
    QString service;
    QString path;
    QString interface;

    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) const {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        return QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    }
};

// The top-level rows of the tray menu, by label; none when it cannot be read.
std::map<QString, int> menuRows(const RemoteObject& menu) {
    const QDBusMessage reply = menu.call(QStringLiteral("GetLayout"), {0, -1, QStringList()});
    std::map<QString, int> rows;
    if (reply.arguments().size() != 2) {
        return rows;
    }
    // The root (ia{sv}av): its children are variants holding the same shape.
    const auto root = reply.arguments().at(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        const auto node = child.variant().value<QDBusArgument>();
        node.beginStructure();
        node >> id >> properties;
        node.endStructure();
        rows[properties.value(QStringLiteral("label")).toString()] = id;
    }
    root.endArray();
    root.endStructure();
    return rows;
}

class DesktopEndToEnd : public AtspiTrust {
protected:
    void SetUp() override {
        AtspiTrust::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        watcher_ = std::make_unique<ChildProcess>(std::vector<std::string>{HG_FAKE_SNI_WATCHER});
        ASSERT_TRUE(watcher_->waitForLine("watching")) << "no StatusNotifierWatcher";
        std::string whyNot;
        zoom_ = FixtureApp::start(ax_, whyNot);
        ASSERT_NE(zoom_, nullptr) << whyNot;
    }
    void TearDown() override {
        if (program_) {
            program_->stop();
        }
        AtspiTrust::TearDown();
    }

    ChildProcess& startProgram(const std::string& configHome) {
        program_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{
                "env", "HUSHGREMLIN_TEST_APP_IDENTITIES=us.zoom.xos=" + zoom_->processName(),
                "QT_QPA_PLATFORM=xcb", "XDG_CONFIG_HOME=" + configHome, HG_DESKTOP_PROGRAM},
            DesktopSession::shared()->scratchDir() + "/hushgremlin.log");
        return *program_;
    }
    // Finds the program's tray menu through the watcher it registered with.
    void findMenu() {
        const auto item = watcher_->waitForLine("item ");
        ASSERT_TRUE(item) << "the tray icon never registered";
        const QString service = QString::fromStdString(item->substr(5, item->find(' ', 5) - 5));
        const QDBusMessage menu =
            RemoteObject{service, QStringLiteral("/StatusNotifierItem"),
                         QStringLiteral("org.freedesktop.DBus.Properties")}
                .call(QStringLiteral("Get"),
                      {QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Menu")});
        ASSERT_EQ(menu.arguments().size(), 1) << menu.errorMessage().toStdString();
        const auto path =
            menu.arguments().at(0).value<QDBusVariant>().variant().value<QDBusObjectPath>();
        menu_ = RemoteObject{service, path.path(), QStringLiteral("com.canonical.dbusmenu")};
    }
    bool showsRow(const char* label) {
        return waitUntil([&] { return menuRows(menu_).contains(label); });
    }
    // Opens the menu, clicks the row and closes the menu again.
    bool click(const char* label) {
        const auto rows = menuRows(menu_);
        const auto row = rows.find(label);
        const QVariant noData = QVariant::fromValue(QDBusVariant(0));
        const bool clicked =
            row != rows.end() &&
            menu_.call(QStringLiteral("AboutToShow"), {0}).type() == QDBusMessage::ReplyMessage &&
            menu_.call(QStringLiteral("Event"),
                       {row->second, QStringLiteral("clicked"), noData, 0U})
                    .type() == QDBusMessage::ReplyMessage;
        // A row that quits the program may leave no one to answer this.
        menu_.call(QStringLiteral("Event"), {0, QStringLiteral("closed"), noData, 0U});
        return clicked;
    }
    bool zoomBecomes(const std::string& state) {
        return waitUntil([&] { return zoom_->state() == state; });
    }
    // Holds control-K longer than a tap: `whileHeld` until it is released.
    void holdShortcut(const std::string& whileHeld, const std::string& afterwards) {
        const auto pressed = std::chrono::steady_clock::now();
        xdotool({"keydown", "ctrl+k"});
        EXPECT_TRUE(zoomBecomes(whileHeld));
        std::this_thread::sleep_until(pressed + 300ms);
        EXPECT_EQ(zoom_->state(), whileHeld) << "still held";
        xdotool({"keyup", "ctrl+k"});
        EXPECT_TRUE(zoomBecomes(afterwards));
    }

    AtspiAccessibility ax_{AtspiAccessibility::Options{.alwaysOn = true}};
    std::unique_ptr<ChildProcess> watcher_;
    std::unique_ptr<FixtureApp> zoom_;
    std::unique_ptr<ChildProcess> program_;
    RemoteObject menu_;
};

TEST_F(DesktopEndToEnd, GrantMuteOnJoinToggleFromTheMenuLeaveAndQuit) {
    // Accessibility is off, and the program is not started "always on": it
    // has to wait for the switch.
    ChildProcess& program = startProgram(std::getenv("XDG_CONFIG_HOME"));
    ASSERT_TRUE(program.waitForLine("GOT AX:  false"));
    findMenu();
    EXPECT_TRUE(showsRow("Setup Required...")) << "Zoom runs, but cannot be read yet";
    // A panel that draws the menu itself (xfce4-panel) asks for it to be
    // shown after laying out its copy, with Alt held if the user holds it,
    // and never says it closed: its copy stays as it is and still follows.
    xdotool({"keydown", "alt"});
    EXPECT_EQ(menu_.call(QStringLiteral("AboutToShow"), {0}).type(), QDBusMessage::ReplyMessage);
    xdotool({"keyup", "alt"});
    EXPECT_FALSE(menuRows(menu_).contains("Show Debug View"));

    ASSERT_TRUE(switch_.setEnabled(true));
    ASSERT_TRUE(program.waitForLine("SET TRUE noMeeting"));
    EXPECT_TRUE(showsRow("No meeting detected"));

    zoom_->command("join");
    ASSERT_TRUE(program.waitForLine("TOGGLING (auto-mute on join for Zoom)"));
    EXPECT_TRUE(zoomBecomes("muted"));

    ASSERT_TRUE(showsRow("Toggle Mute"));
    ASSERT_TRUE(click("Toggle Mute"));
    EXPECT_TRUE(zoomBecomes("unmuted"));

    zoom_->command("leave");
    EXPECT_TRUE(showsRow("No meeting detected"));

    ASSERT_TRUE(click("Quit"));
    EXPECT_TRUE(program.waitForLine("Goodbye cruel world!"));
    EXPECT_TRUE(program.waitForExit(patience));
    EXPECT_THAT(program.linesRead(),
                ::testing::IsSupersetOf({"setup binding...", "Starting watcher", "GOT AX:  false",
                                         "SET TRUE noMeeting", "AX ACQUIRED true",
                                         "TOGGLING (auto-mute on join for Zoom)", "GETTING BUTTON",
                                         "Goodbye cruel world!"}));
    for (const auto& line : program.linesRead()) {
        EXPECT_THAT(line, Not(HasSubstr("error")));
    }
}

TEST_F(DesktopEndToEnd, MutesAJoinInGtk3AndQt5Applications) {
    ASSERT_TRUE(switch_.setEnabled(true));
    for (const Toolkit toolkit : {Toolkit::gtk3, Toolkit::qt5}) {
        SCOPED_TRACE(toolkitName(toolkit));
        std::string whyNot;
        zoom_ = FixtureApp::start(ax_, whyNot, toolkit);
        ASSERT_NE(zoom_, nullptr) << whyNot;
        ChildProcess& program = startProgram(std::getenv("XDG_CONFIG_HOME"));
        // Two ticks: the fixture has been read outside a meeting.
        ASSERT_TRUE(program.waitForLine("GOT AX:  true"));
        ASSERT_TRUE(program.waitForLine("GOT AX:  true"));
        zoom_->command("join");
        ASSERT_TRUE(program.waitForLine("TOGGLING (auto-mute on join for Zoom)"));
        EXPECT_TRUE(zoomBecomes("muted"));
        program.stop();
        EXPECT_THAT(program.linesRead(), Not(::testing::Contains("BOTH BUTTONS!")));
    }
}

TEST_F(DesktopEndToEnd, PushToTalkHoldsAndADoubleTapLeavesTheMicrophoneOpen) {
    // Control-K, stored the way the program stores its shortcut (as data).
    const std::string config = DesktopSession::shared()->scratchDir() + "/push-to-talk-config";
    QSettings(QString::fromStdString(config + "/HushGremlin/HushGremlin.conf"),
              QSettings::IniFormat)
        .setValue("mute_hotkey_v2", QByteArray(R"({"keyCode":40,"modifiers":262144})"));
    ASSERT_TRUE(switch_.setEnabled(true));
    zoom_->command("join muted");
    ChildProcess& program = startProgram(config);
    ASSERT_TRUE(program.waitForLine("Do we have a monitor:  YES"));
    findMenu();
    ASSERT_TRUE(showsRow("Toggle Mute")) << "the meeting was never read";
    const int before = zoom_->presses();

    holdShortcut("unmuted", "muted");
    EXPECT_EQ(zoom_->presses(), before + 2);

    // Two quick taps: open, mute, open, and the last release leaves it open.
    xdotool({"keydown", "ctrl+k", "keyup", "ctrl+k", "keydown", "ctrl+k", "keyup", "ctrl+k"});
    EXPECT_TRUE(waitUntil([&] { return zoom_->presses() >= before + 5; }));
    EXPECT_EQ(zoom_->state(), "unmuted");
    // Now holding mutes. The hold's press comes after the double tap's last
    // release, so that release has been handled by then, and toggled nothing.
    holdShortcut("muted", "unmuted");
    EXPECT_EQ(zoom_->presses(), before + 7);

    program.signal(SIGTERM);
    EXPECT_TRUE(program.waitForLine("Goodbye cruel world!"));
    EXPECT_THAT(program.linesRead(),
                ::testing::IsSupersetOf({"setup binding...", "Do we have a monitor:  YES",
                                         "GOT AX:  true", "GETTING BUTTON"}));
    // No complaint about the tap, its grabs or the sequence of presses.
    for (const auto& line : program.linesRead()) {
        EXPECT_THAT(line, Not(AnyOf(HasSubstr("ERR"), HasSubstr("error"), HasSubstr("Failed"),
                                    HasSubstr("shortcut"))));
    }
}

// The first element under `root` (depth first) with this role (any role when
// empty) and title.
AXElementRef findElement(Accessibility& ax, const AXElementRef& root, const std::string& role,
                         const std::string& title, int depth = 0) {
    const auto text = [&ax](const AXElementRef& element, const char* attribute) {
        auto value = ax.copyAttributeValue(element, attribute).value;
        const auto* found = std::get_if<std::string>(&value);
        return found != nullptr ? *found : std::string();
    };
    if ((role.empty() || text(root, "AXRole") == role) && text(root, "AXTitle") == title) {
        return root;
    }
    auto children = ax.copyAttributeValue(root, "AXChildren").value;
    const auto* list = std::get_if<std::vector<AXElementRef>>(&children);
    for (std::size_t i = 0; list != nullptr && depth < 12 && i < list->size(); ++i) {
        if (auto found = findElement(ax, (*list)[i], role, title, depth + 1)) {
            return found;
        }
    }
    return nullptr;
}

// Every control of the preferences window, through its accessibility action
// alone (what a screen reader or a switch device does): the check boxes'
// only action, "Toggle", changes the setting as a click does.
TEST_F(DesktopEndToEnd, PreferencesControlsDoTheirWorkThroughTheirAccessibilityAction) {
    ASSERT_TRUE(switch_.setEnabled(true));
    const std::string config = DesktopSession::shared()->scratchDir() + "/accessible-config";
    const QString settings = QString::fromStdString(config + "/HushGremlin/HushGremlin.conf");
    // A shortcut stored, so that the recorder does not start recording by itself.
    QSettings(settings, QSettings::IniFormat)
        .setValue("mute_hotkey_v2", QByteArray(R"({"keyCode":40,"modifiers":262144})"));
    ChildProcess& program = startProgram(config);
    ASSERT_TRUE(program.waitForLine("GOT AX:  true"));
    ChildProcess({"env", "XDG_CONFIG_HOME=" + config, HG_DESKTOP_PROGRAM, "preferences"})
        .waitForExit(patience);
    const auto stored = [&settings](const char* key) {
        return QSettings(settings, QSettings::IniFormat).value(key).toString().toStdString();
    };
    ASSERT_TRUE(waitUntil([&] { return stored("muteOnJoin_Zoom") == "true"; }));

    // A fresh look at the program's tree each time: the backend keeps what
    // a walk learnt until the next one starts.
    const auto find = [&](const char* role, const char* title) {
        return findElement(ax_, ax_.createApplication(program.pid()), role, title);
    };
    const struct {
        const char* title;
        const char* key;
        const char* after;
    } boxes[] = {
        {"Zoom", "muteOnJoin_Zoom", "false"},
        {"Tuple", "muteOnJoin_Tuple", "false"},
        {"Microphone", "muteOnJoin_Microphone", "false"},
        {"Also mute the microphone in other call apps", "muteMicrophoneInOtherApps", "true"},
    };
    for (const auto& box : boxes) {
        SCOPED_TRACE(box.title);
        AXElementRef element;
        ASSERT_TRUE(waitUntil([&] {
            element = find("AXCheckBox", box.title);
            return element != nullptr;
        }));
        ASSERT_EQ(ax_.performAction(element, "AXPress"), ax::success);
        EXPECT_TRUE(waitUntil([&] { return stored(box.key) == box.after; }));
    }

    // The shortcut field records after its Press as after a click: control-J.
    const AXElementRef shortcut = find("AXPushButton", "Mute Shortcut");
    ASSERT_NE(shortcut, nullptr);
    ASSERT_EQ(ax_.performAction(shortcut, "AXPress"), ax::success);
    xdotool({"key", "ctrl+j"});
    EXPECT_TRUE(waitUntil([&] {
        return stored("mute_hotkey_v2").find("\"keyCode\":38") != std::string::npos;
    })) << stored("mute_hotkey_v2");

    const AXElementRef login = find("AXCheckBox", "Start Hush Gremlin on login");
    ASSERT_NE(login, nullptr);
    ASSERT_EQ(ax_.performAction(login, "AXPress"), ax::success);
    EXPECT_TRUE(waitUntil(
        [&] { return std::filesystem::exists(config + "/autostart/hushgremlin.desktop"); }));

    const AXElementRef about = find("AXPushButton", "About...");
    ASSERT_NE(about, nullptr);
    ASSERT_EQ(ax_.performAction(about, "AXPress"), ax::success);
    EXPECT_TRUE(waitUntil([&] { return find("", "About Hush Gremlin") != nullptr; }));
}

} // namespace
} // namespace hg::test
