#include "menu/GremlinMenu.hpp"

#include "platform/fake/FakeStatusItem.hpp"

#include <gtest/gtest.h>
#include <map>
#include <ostream>

namespace hg {

// Readable failure messages; found by argument-dependent lookup.
[[maybe_unused]] static void PrintTo(const MenuRow& row, std::ostream* os) {
    if (row.kind == MenuRow::Kind::separator) {
        *os << "---";
        return;
    }
    *os << '"' << row.title << "\" action=" << static_cast<int>(row.action) << " tag=" << row.tag
        << (row.red ? " red" : "");
}

namespace {

using S = MeetingStatus;
using A = MenuAction;

// Counts each callback's calls by name.
struct CallbackCounts {
    std::map<std::string, int> calls;

    GremlinMenuCallbacks callbacks() {
        auto count = [this](const char* name) { return [this, name] { ++calls[name]; }; };
        return {count("toggle"), count("prefs"), count("axErr"),
                count("update"), count("quit"),  count("debugView")};
    }
};

// Records the order of everything the menu hands to the item.
class RecordingStatusItem final : public StatusItem {
public:
    void setImage(const std::string& name) override { calls.push_back("image " + name); }
    void setMenu(const MenuModel& menu) override {
        calls.push_back("menu " + menu.rows.front().title);
    }
    void setHandler(StatusItemHandler* h) override { handler = h; }

    std::vector<std::string> calls;
    StatusItemHandler* handler = nullptr;
};

std::vector<std::string> titles(const MenuModel& menu) {
    std::vector<std::string> out;
    for (const auto& row : menu.rows) {
        out.push_back(row.kind == MenuRow::Kind::separator ? "---" : row.title);
    }
    return out;
}

TEST(GremlinMenu, ConstructionAttachesAndShowsTheNoMeetingLookMenuFirst) {
    RecordingStatusItem item;
    {
        const GremlinMenu menu(item, {});
        EXPECT_EQ(item.handler, &menu);
        EXPECT_EQ(item.calls,
                  (std::vector<std::string>{"menu No meeting detected", "image NoMeetingIcon"}));
        EXPECT_FALSE(menu.hasUpdate());
    }
    EXPECT_EQ(item.handler, nullptr) << "the destructor detaches";
}

TEST(GremlinMenu, EachStatusGetsItsRowAndIcon) {
    struct Case {
        S status;
        std::string icon;
        MenuRow row;
    };
    const Case cases[] = {
        {S::notRunning,
         "NoMeetingIcon",
         {MenuRow::Kind::item, "No meeting detected", A::none, false, 0}},
        {S::noMeeting,
         "NoMeetingIcon",
         {MenuRow::Kind::item, "No meeting detected", A::none, false, 0}},
        {S::onMute, "OnMuteIcon", {MenuRow::Kind::item, "Toggle Mute", A::toggleMute, false, 0}},
        {S::offMute, "OffMuteIcon", {MenuRow::Kind::item, "Toggle Mute", A::toggleMute, false, 0}},
        {S::setupError,
         "ErrorIcon",
         {MenuRow::Kind::item, "Setup Required...", A::axError, true, 0}},
        {S::error, "ErrorIcon", {MenuRow::Kind::item, "Error...", A::axError, true, 0}},
    };
    FakeStatusItem item;
    GremlinMenu menu(item, {});
    for (const auto& c : cases) {
        const int setsBefore = item.menuSetCount();
        menu.updateMenu(c.status);
        const MenuModel expected{{
            c.row,
            MenuRow::separator(),
            {MenuRow::Kind::item, "Preferences...", A::openPrefs, false, 42},
            MenuRow::separator(),
            {MenuRow::Kind::item, "Quit", A::quit, false, 0},
        }};
        EXPECT_EQ(item.menu(), expected) << toString(c.status);
        EXPECT_EQ(menu.menu(), expected) << toString(c.status);
        EXPECT_EQ(item.image(), c.icon) << toString(c.status);
        EXPECT_EQ(item.menuSetCount(), setsBefore + 1);
        EXPECT_EQ(item.menu().rows.front().enabled(), c.row.action != A::none);
    }
}

TEST(GremlinMenu, UpdateRowAppearsFromTheNextRebuild) {
    FakeStatusItem item;
    GremlinMenu menu(item, {});
    menu.updateMenu(S::onMute);
    const int sets = item.menuSetCount();
    menu.setHasUpdate(true);
    EXPECT_EQ(item.menuSetCount(), sets);
    EXPECT_EQ(item.menu().indexOfTag(44), -1);

    menu.updateMenu(S::onMute);
    EXPECT_EQ(titles(item.menu()), (std::vector<std::string>{"Toggle Mute", "---", "Update Now...",
                                                             "Preferences...", "---", "Quit"}));
    EXPECT_EQ(item.menu().rows[2].tag, 44);
    EXPECT_EQ(item.menu().rows[2].action, A::checkUpdate);
    menu.updateMenu(S::error);
    EXPECT_EQ(item.menu().indexOfTag(44), 2) << "every later menu has it";
}

TEST(GremlinMenu, OptionOpeningAddsTheDebugRowAbovePreferencesUntilClosed) {
    for (const bool hasUpdate : {false, true}) {
        FakeStatusItem item;
        GremlinMenu menu(item, {});
        menu.setHasUpdate(hasUpdate);
        menu.updateMenu(S::noMeeting);
        const MenuModel plain = item.menu();

        item.open(0x80000 | 0x100000);
        const auto debugAt = static_cast<std::size_t>(plain.indexOfTag(42));
        ASSERT_EQ(item.menu().rows.size(), plain.rows.size() + 1);
        EXPECT_EQ(item.menu().rows[debugAt],
                  (MenuRow{MenuRow::Kind::item, "Show Debug View", A::debugView, false, 43}));
        EXPECT_EQ(item.menu().rows[debugAt + 1].title, "Preferences...");
        if (hasUpdate) {
            EXPECT_EQ(item.menu().rows[debugAt - 1].title, "Update Now...");
        }

        item.close();
        EXPECT_EQ(item.menu(), plain);
        EXPECT_EQ(menu.menu(), plain);
    }
}

TEST(GremlinMenu, NoDebugRowWithoutOptionOrWithoutAnEvent) {
    for (const auto modifiers : {std::optional<std::uint64_t>{}, std::optional<std::uint64_t>{0},
                                 std::optional<std::uint64_t>{0x100000 | 0x20000 | 0x40000}}) {
        FakeStatusItem item;
        GremlinMenu menu(item, {});
        const int sets = item.menuSetCount();
        item.open(modifiers);
        item.close();
        EXPECT_EQ(item.menu().indexOfTag(43), -1);
        EXPECT_EQ(item.menuSetCount(), sets) << "nothing to push";
    }
}

TEST(GremlinMenu, AStatusPushedWhileOpenDropsTheDebugRow) {
    FakeStatusItem item;
    GremlinMenu menu(item, {});
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
        {S::offMute, "Toggle Mute", "toggle"},
        {S::setupError, "Setup Required...", "axErr"},
        {S::error, "Error...", "axErr"},
        {S::noMeeting, "Preferences...", "prefs"},
        {S::noMeeting, "Update Now...", "update"},
        {S::noMeeting, "Quit", "quit"},
        {S::noMeeting, "Show Debug View", "debugView"},
    };
    for (const auto& c : cases) {
        CallbackCounts counts;
        FakeStatusItem item;
        GremlinMenu menu(item, counts.callbacks());
        menu.setHasUpdate(true);
        menu.updateMenu(c.status);
        item.open(0x80000);
        EXPECT_TRUE(item.pick(c.title)) << c.title;
        EXPECT_EQ(counts.calls, (std::map<std::string, int>{{c.callback, 1}})) << c.title;
    }
}

TEST(GremlinMenu, NoMeetingRowCannotBeChosenAndEmptyCallbacksAreHarmless) {
    FakeStatusItem item;
    GremlinMenu menu(item, {});
    item.open(std::nullopt);
    EXPECT_FALSE(item.pick("No meeting detected"));
    EXPECT_TRUE(item.pick("Quit"));
    menu.rowChosen(A::none);
}

} // namespace
} // namespace hg
