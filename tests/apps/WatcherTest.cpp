#include "core/Watcher.hpp"

#include "ZoomTree.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "backends/fake/FakeTimers.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "menu/GremlinMenu.hpp"
#include "support/ScriptedMeetingApp.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using S = MeetingStatus;
using Lines = std::vector<std::string>;

// A status store on fake time, a Zoom tree for the real Zoom adapter, and
// recorded callbacks. The watcher is built on demand from `apps`.
class WatcherTest : public ::testing::Test {
protected:
    FakeClock clock;
    FakeTimers timers{clock};
    FakeStatusItem item;
    GremlinMenu menu{item, {}};
    ZoomTree zoomTree; // its `out` is the sink of every line
    BufferLineSink& out = zoomTree.out;
    FakeAccessibility& ax = zoomTree.ax;
    UserData data{menu, clock, out};
    FakeUserDefaults defaults;
    std::vector<bool> axChanges;
    Lines setupReports;
    std::vector<std::shared_ptr<MeetingApp>> apps;
    std::unique_ptr<Watcher> watcher;

    std::shared_ptr<ScriptedMeetingApp> scripted(const std::string& name, S status) {
        auto app = std::make_shared<ScriptedMeetingApp>(name);
        app->status = status;
        apps.push_back(app);
        return app;
    }
    Watcher& build(UserData& store) {
        watcher = std::make_unique<Watcher>(
            store, apps, [this](bool v) { axChanges.push_back(v); },
            [this](MeetingApp& app) { setupReports.push_back(app.name()); }, ax, defaults, timers,
            out);
        return *watcher;
    }
    Watcher& build() { return build(data); }
    // Lines other than the per-tick "GOT AX:" line.
    Lines events() {
        auto lines = out.take();
        std::erase_if(lines, [](const std::string& l) { return l.starts_with("GOT AX:"); });
        return lines;
    }
};

TEST_F(WatcherTest, TheTimerDoesNothingOnceTheWatcherIsGone) {
    auto app = scripted("Zoom", S::noMeeting);
    build().start();
    timers.advanceSeconds(1);
    EXPECT_EQ(app->fetchCount, 1);

    watcher.reset();
    timers.advanceSeconds(3);
    EXPECT_EQ(app->fetchCount, 1);
}

TEST_F(WatcherTest, ResolvingOneStatusFromTheList) {
    struct Row {
        S zoom;
        S tuple;
        S resolved;
        const char* active; // "" for none
    };
    const std::vector<Row> rows = {
        {S::notRunning, S::onMute, S::onMute, "Tuple"},
        {S::offMute, S::onMute, S::offMute, "Zoom"},
        {S::setupError, S::noMeeting, S::setupError, ""},
        {S::setupError, S::offMute, S::offMute, "Tuple"},
        {S::error, S::error, S::noMeeting, ""},
        {S::notRunning, S::notRunning, S::noMeeting, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(toString(row.zoom)) + " " + std::string(toString(row.tuple)));
        apps.clear();
        data.setActiveApp(nullptr);
        auto z = scripted("Zoom", row.zoom);
        auto t = scripted("Tuple", row.tuple);
        build().poll();
        EXPECT_EQ(data.readStatus(), row.resolved);
        EXPECT_EQ(data.activeApp() ? data.activeApp()->name() : "", row.active);
        EXPECT_EQ(t->fetchCount, isInMeeting(row.zoom) ? 0 : 1);
    }
}

TEST_F(WatcherTest, TheActiveApplicationKeepsPriorityAndIsAskedTwiceOnLeaving) {
    auto z = scripted("Zoom", S::noMeeting);
    auto t = scripted("Tuple", S::onMute);
    build().poll();
    ASSERT_EQ(data.activeApp(), t);

    z->status = S::offMute;
    watcher->poll();
    EXPECT_EQ(data.activeApp(), t);
    EXPECT_EQ(data.readStatus(), S::onMute);
    EXPECT_EQ(z->fetchCount, 1) << "while Tuple stays in its meeting Zoom is not asked";
    EXPECT_EQ(t->fetchCount, 2);

    // Once as the active application, once more in the list's order.
    z->status = S::noMeeting;
    t->status = S::noMeeting;
    watcher->poll();
    EXPECT_EQ(t->fetchCount, 4);
    EXPECT_EQ(z->fetchCount, 2);
    EXPECT_EQ(data.activeApp(), nullptr);
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
}

TEST_F(WatcherTest, ZoomsCachedButtonIsForgottenWhenTheMeetingSituationChanges) {
    zoomTree.meeting({"Mute Audio"});
    auto z = std::make_shared<ZoomMeetingApp>(ax, zoomTree.apps, out);
    apps.push_back(z);
    auto t = scripted("Tuple", S::noMeeting);
    const auto button = zoomTree.item("Mute Audio");
    build().poll();
    ASSERT_EQ(data.activeApp(), z);
    z->setMuteButton(button);
    watcher->poll();
    EXPECT_EQ(z->muteButton(), button) << "kept while Zoom stays in its meeting";

    // Shown status noMeeting while Zoom is active: a reading withheld after a
    // toggle made from noMeeting.
    data.setStatus(S::noMeeting);
    data.toggleMute();
    z->setMuteButton(button);
    watcher->poll();
    ASSERT_EQ(data.activeApp(), z);
    ASSERT_EQ(data.truestStatus(), S::noMeeting);
    EXPECT_EQ(z->muteButton(), nullptr);

    // Zoom leaving its meeting for Tuple's.
    z->setMuteButton(button);
    zoomTree.menuBar->children.erase(zoomTree.menuBar->children.begin() + 2);
    t->status = S::onMute;
    watcher->poll();
    EXPECT_EQ(data.activeApp(), t);
    EXPECT_EQ(z->muteButton(), nullptr);
}

TEST_F(WatcherTest, MuteOnJoinOnlyOnTheTickFromNoMeetingToLive) {
    struct Row {
        const char* what;
        std::optional<DefaultsValue> stored; // under muteOnJoin_Zoom
        S before;
        S joined;
        bool toggles;
    };
    const std::vector<Row> rows = {
        {"key absent", std::nullopt, S::noMeeting, S::offMute, true},
        {"key true", true, S::noMeeting, S::offMute, true},
        {"key false", false, S::noMeeting, S::offMute, false},
        {"key as text NO", std::string("NO"), S::noMeeting, S::offMute, false},
        {"joined muted", std::nullopt, S::noMeeting, S::onMute, false},
        {"already live at start", std::nullopt, S::error, S::offMute, false},
    };
    ax.setTrusted(false); // no permission lines in between
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        apps.clear();
        defaults.removeObject("muteOnJoin_Zoom");
        if (row.stored) {
            defaults.setObject("muteOnJoin_Zoom", *row.stored);
        }
        UserData fresh{menu, clock, out};
        if (row.before != S::error) {
            fresh.setStatus(row.before);
        }
        auto z = scripted("Zoom", row.joined);
        build(fresh).poll();
        EXPECT_EQ(z->toggleCount(), row.toggles ? 1 : 0);
        EXPECT_EQ(events(), row.toggles ? Lines{"TOGGLING (auto-mute on join for Zoom)"} : Lines{});
        watcher->poll();
        EXPECT_EQ(z->toggleCount(), row.toggles ? 1 : 0) << "not again on the next tick";
    }
}

TEST_F(WatcherTest, ALateAnswerKeepsTheMeetingAndALateOrSlowAppIsLeftAloneForAWhile) {
    ax.setTrusted(false); // no permission lines in between
    defaults.setObject("muteOnJoin_Zoom", false);
    auto zoom = scripted("Zoom", S::offMute);
    auto tuple = scripted("Tuple", S::noMeeting);
    build().poll(); // joined: mute on join is left to its own test
    events();
    data.setStatus(S::offMute); // the toggle's quiet time is not what this is about

    const auto tick = [&](int times = 1) {
        for (int i = 0; i < times; ++i) {
            clock.advanceSeconds(1);
            watcher->poll();
        }
    };
    zoom->late = true;
    tick();
    EXPECT_EQ(data.truestStatus(), S::offMute);
    EXPECT_EQ(data.activeApp(), zoom) << "no answer is not a left meeting";
    EXPECT_EQ(events(), Lines{"Zoom answered late; asking again in 2 s"});
    const int fetches = zoom->fetchCount;
    const int tupleFetches = tuple->fetchCount;
    tick(2);
    EXPECT_EQ(zoom->fetchCount, fetches) << "left alone";
    EXPECT_EQ(tuple->fetchCount, tupleFetches) << "the list is not asked either";
    tick();
    EXPECT_EQ(events(), Lines{"Zoom answered late; asking again in 4 s"}) << "twice as long";

    zoom->late = false;
    zoom->status = S::noMeeting; // it answers again: not before 4 ticks
    tick(4);
    EXPECT_EQ(data.truestStatus(), S::offMute);
    tick();
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
    EXPECT_EQ(data.activeApp(), nullptr);

    zoom->status = S::offMute;
    zoom->onFetch = [&] { clock.advanceSeconds(0.3); }; // an answer, but a slow one
    tick();
    EXPECT_EQ(data.truestStatus(), S::offMute) << "a slow answer is used";
    EXPECT_EQ(events(), (Lines{"Zoom answered late; asking again in 2 s"}));
    EXPECT_EQ(zoom->toggleCount(), 0) << "mute on join was turned off";
}

TEST_F(WatcherTest, PermissionGainedWaitsForAStatusOtherThanSetupErrorAndLossIsReportedOnce) {
    auto z = scripted("Zoom", S::setupError);
    build();
    ax.setTrusted(true);
    watcher->poll();
    watcher->poll();
    EXPECT_EQ(events(), Lines{});
    EXPECT_FALSE(data.hasAXAccess());

    z->status = S::noMeeting;
    const auto snapshots = data.statusCounts();
    watcher->poll();
    EXPECT_EQ(events(), Lines{"SET TRUE noMeeting"});
    EXPECT_TRUE(data.hasAXAccess());
    EXPECT_EQ(data.statusCounts(), snapshots + 2) << "the reading's snapshot and the change's";
    EXPECT_TRUE(data.statusHistory().front().hasAX);

    ax.setTrusted(false);
    watcher->poll();
    watcher->poll();
    EXPECT_EQ(events(), Lines{"SET FALSE EARLY"});
    EXPECT_FALSE(data.hasAXAccess());
    EXPECT_EQ(axChanges, (std::vector<bool>{true, false}));
}

TEST_F(WatcherTest, ErrorShownWhileZoomIsActiveDropsThePermissionLate) {
    data.setHasAXAccess(true);
    zoomTree.meeting({"Mute Audio"});
    auto z = std::make_shared<ZoomMeetingApp>(ax, zoomTree.apps, out);
    apps.push_back(z);
    build().poll();
    ASSERT_EQ(data.activeApp(), z);

    // The store shows error, and a toggle keeps the next reading out.
    data.setStatus(S::error);
    clock.advanceSeconds(2);
    data.setStatus(S::error);
    ASSERT_EQ(data.truestStatus(), S::error);
    data.toggleMute();
    out.clear();
    watcher->poll();
    EXPECT_EQ(events(), Lines{"SET FALSE LATE"});
    EXPECT_FALSE(data.hasAXAccess());
    EXPECT_EQ(axChanges, std::vector<bool>{false});
}

TEST_F(WatcherTest, SetupIsReportedOncePerPeriodOfNeed) {
    auto z = scripted("Zoom", S::noMeeting);
    auto t = scripted("Tuple", S::setupError);
    t->setupNeeded = true;
    build();
    for (int i = 0; i < 3; ++i) {
        watcher->poll();
    }
    EXPECT_EQ(setupReports, Lines{"Tuple"});
    EXPECT_EQ(watcher->reportedSetupApps(), std::set<std::string>{"Tuple"});

    t->setupNeeded = false;
    watcher->poll();
    EXPECT_TRUE(watcher->reportedSetupApps().empty());
    t->setupNeeded = true;
    z->setupNeeded = true;
    watcher->poll();
    watcher->poll();
    EXPECT_EQ(setupReports, (Lines{"Tuple", "Zoom", "Tuple"}));
}

} // namespace
} // namespace hg
