#include "menu/GremlinMenu.hpp"

#include "backends/fake/FakeStatusItem.hpp"

#include <gtest/gtest.h>
#include <map>

namespace hg {
namespace {

using S = MeetingStatus;
using A = MenuAction;
using Titles = std::vector<std::string>;

MenuRow row(std::string title, A action, int tag = 0, bool red = false) {
    return MenuRow{MenuRow::Kind::item, std::move(title), action, red, tag};
}

Titles titles(const MenuModel& menu) {
    Titles out;
    for (const auto& r : menu.rows) {
        out.push_back(r.kind == MenuRow::Kind::separator ? "---" : r.title);
    }
    return out;
}

// Keeps only the handler, to see the menu attach and detach.
struct HandlerSpy final : StatusItem {
    void setImage(const std::string& /*name*/) override {}
    void setToolTip(const std::string& /*text*/) override {}
    void setMenu(const MenuModel& /*menu*/) override {}
    void setHandler(StatusItemHandler* h) override { handler = h; }
    StatusItemHandler* handler = nullptr;
};

TEST(GremlinMenu, HandlesTheItemForItsLifetimeAndEmptyCallbacksAreHarmless) {
    HandlerSpy item;
    {
        GremlinMenu menu(item, {});
        EXPECT_EQ(item.handler, &menu);
        menu.rowChosen(A::quit);
        menu.rowChosen(A::toggleMute);
    }
    EXPECT_EQ(item.handler, nullptr);
}

TEST(GremlinMenu, EachStatusGetsItsRowIconAndToolTip) {
    struct Case {
        S status;
        std::string icon;
        MenuRow row;
        std::string toolTip;
    };
    const Case cases[] = {
        {S::notRunning, "NoMeetingIcon", row("No meeting detected", A::none),
         "Hush Gremlin: no meeting"},
        {S::noMeeting, "NoMeetingIcon", row("No meeting detected", A::none),
         "Hush Gremlin: no meeting"},
        {S::onMute, "OnMuteIcon", row("Toggle Mute", A::toggleMute), "Hush Gremlin: muted in Zoom"},
        {S::offMute, "OffMuteIcon", row("Toggle Mute", A::toggleMute),
         "Hush Gremlin: live in Zoom"},
        {S::setupError, "ErrorIcon", row("Setup Required...", A::axError, 0, true),
         "Hush Gremlin: setup required"},
        {S::error, "ErrorIcon", row("Error...", A::axError, 0, true), "Hush Gremlin: error"},
    };
    FakeStatusItem item;
    GremlinMenuCallbacks callbacks;
    callbacks.activeAppName = [] { return std::string("Zoom"); };
    GremlinMenu menu(item, std::move(callbacks));
    for (const auto& c : cases) {
        SCOPED_TRACE(toString(c.status));
        menu.updateMenu(c.status);
        const MenuModel expected{{c.row, MenuRow::separator(),
                                  row("Preferences...", A::openPrefs, 42), MenuRow::separator(),
                                  row("Quit", A::quit)}};
        EXPECT_EQ(item.menu(), expected);
        EXPECT_EQ(item.image(), c.icon);
        EXPECT_EQ(item.toolTip(), c.toolTip);
    }
    EXPECT_EQ(GremlinMenu::toolTip(S::onMute, ""), "Hush Gremlin: muted");
    EXPECT_EQ(GremlinMenu::toolTip(S::offMute, "Microphone"), "Hush Gremlin: microphone live");
}

TEST(GremlinMenu, UpdateRowAppearsFromTheNextRebuild) {
    FakeStatusItem item;
    GremlinMenu menu(item, {});
    const int sets = item.menuSetCount();
    menu.setHasUpdate(true);
    EXPECT_EQ(item.menuSetCount(), sets);

    menu.updateMenu(S::onMute);
    EXPECT_EQ(titles(item.menu()),
              (Titles{"Toggle Mute", "---", "Update Now...", "Preferences...", "---", "Quit"}));
    EXPECT_EQ(item.menu().rows[2], row("Update Now...", A::checkUpdate, 44));
    menu.updateMenu(S::error);
    EXPECT_EQ(item.menu().indexOfTag(44), 2) << "every later menu has it";
}

TEST(GremlinMenu, OptionOpeningAddsTheDebugRowAbovePreferencesUntilClosed) {
    struct Case {
        bool hasUpdate;
        Titles opened;
    };
    const Case cases[] = {
        {false, {"No meeting detected", "---", "Show Debug View", "Preferences...", "---", "Quit"}},
        {true,
         {"No meeting detected", "---", "Update Now...", "Show Debug View", "Preferences...", "---",
          "Quit"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.hasUpdate);
        FakeStatusItem item;
        GremlinMenu menu(item, {});
        menu.setHasUpdate(c.hasUpdate);
        menu.updateMenu(S::noMeeting);
        const MenuModel plain = item.menu();

        item.open(0x80000 | 0x100000);
        ASSERT_EQ(titles(item.menu()), c.opened);
        const auto at = static_cast<std::size_t>(item.menu().indexOfTag(43));
        EXPECT_EQ(item.menu().rows[at], row("Show Debug View", A::debugView, 43));
        item.close();
        EXPECT_EQ(item.menu(), plain);
    }
}

TEST(GremlinMenu, NoDebugRowWithoutOptionNorAfterARebuildWhileOpen) {
    FakeStatusItem item;
    GremlinMenu menu(item, {});
    const int sets = item.menuSetCount();
    for (const auto modifiers : {std::optional<std::uint64_t>{},
                                 std::optional<std::uint64_t>{0x100000 | 0x20000 | 0x40000}}) {
        item.open(modifiers);
        item.close();
    }
    EXPECT_EQ(item.menuSetCount(), sets) << "nothing to push";

    item.open(0x80000);
    menu.updateMenu(S::offMute);
    item.close();
    EXPECT_EQ(item.menu(), GremlinMenu::buildMenu(S::offMute, false));
}

TEST(GremlinMenu, EachRowCallsItsOwnCallbackOnce) {
    struct Case {
        S status;
        std::string title;
        std::string callback;
    };
    const Case cases[] = {
        {S::onMute, "Toggle Mute", "toggle"},
        {S::setupError, "Setup Required...", "axErr"},
        {S::error, "Error...", "axErr"},
        {S::noMeeting, "Preferences...", "prefs"},
        {S::noMeeting, "Update Now...", "update"},
        {S::noMeeting, "Quit", "quit"},
        {S::noMeeting, "Show Debug View", "debugView"},
    };
    for (const auto& c : cases) {
        std::map<std::string, int> calls;
        auto count = [&calls](const char* name) { return [&calls, name] { ++calls[name]; }; };
        FakeStatusItem item;
        GremlinMenu menu(item, {count("toggle"),
                                count("prefs"),
                                count("axErr"),
                                count("update"),
                                count("quit"),
                                count("debugView"),
                                {}});
        menu.setHasUpdate(true);
        menu.updateMenu(c.status);
        item.open(0x80000);
        EXPECT_TRUE(item.pick(c.title)) << c.title;
        EXPECT_EQ(calls, (std::map<std::string, int>{{c.callback, 1}})) << c.title;
    }
}

} // namespace
} // namespace hg
