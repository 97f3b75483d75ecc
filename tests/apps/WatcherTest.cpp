#include "core/Watcher.hpp"

#include "ZoomTree.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "menu/GremlinMenu.hpp"
#include "platform/fake/FakeClock.hpp"
#include "platform/fake/FakeStatusItem.hpp"
#include "platform/fake/FakeTimers.hpp"
#include "platform/fake/FakeUserDefaults.hpp"
#include "support/ScriptedMeetingApp.hpp"

#include <algorithm>
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
    std::vector<std::string> setupReports;
    std::vector<std::shared_ptr<MeetingApp>> apps;
    std::unique_ptr<Watcher> watcher;

    std::shared_ptr<ScriptedMeetingApp> scripted(const std::string& name, S status) {
        auto app = std::make_shared<ScriptedMeetingApp>(name);
        app->status = status;
        apps.push_back(app);
        return app;
    }
    std::shared_ptr<ZoomMeetingApp> zoom() {
        auto app = std::make_shared<ZoomMeetingApp>(zoomTree.ax, zoomTree.apps, out);
        apps.push_back(app);
        return app;
    }
    Watcher& build() {
        watcher = std::make_unique<Watcher>(
            data, apps, [this](bool v) { axChanges.push_back(v); },
            [this](MeetingApp& app) { setupReports.push_back(app.name()); }, ax, defaults, timers,
            out);
        return *watcher;
    }
    void at(double seconds) {
        clock.set(Instant{} + std::chrono::duration_cast<Duration>(Seconds(seconds)));
    }
    // Lines other than the per-tick "GOT AX:" line.
    Lines events() {
        auto lines = out.take();
        std::erase_if(lines, [](const std::string& l) { return l.starts_with("GOT AX:"); });
        return lines;
    }
};

TEST_F(WatcherTest, FirstPollIsOneSecondAfterStartAndStopsMatteringWhenTheWatcherIsGone) {
    ax.setTrusted(true);
    auto app = scripted("Zoom", S::noMeeting);
    build().start();
    EXPECT_EQ(out.take(), Lines{"Starting watcher"});
    timers.advanceSeconds(0.999);
    EXPECT_EQ(app->fetchCount, 0);
    timers.advanceSeconds(0.001);
    EXPECT_EQ(app->fetchCount, 1);
    EXPECT_EQ(out.take(), (Lines{"GOT AX:  true", "SET TRUE noMeeting"}));
    timers.advanceSeconds(2);
    EXPECT_EQ(app->fetchCount, 3);
    EXPECT_EQ(out.take(), (Lines{"GOT AX:  true", "GOT AX:  true"}));

    watcher.reset();
    timers.advanceSeconds(3);
    EXPECT_EQ(app->fetchCount, 3);
    EXPECT_TRUE(out.lines().empty());
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
        {S::error, S::noMeeting, S::noMeeting, ""},
        {S::error, S::error, S::noMeeting, ""},
        {S::notRunning, S::notRunning, S::noMeeting, ""},
    };
    for (const auto& row : rows) {
        apps.clear();
        data.setActiveApp(nullptr);
        auto z = scripted("Zoom", row.zoom);
        auto t = scripted("Tuple", row.tuple);
        build().poll();
        EXPECT_EQ(data.readStatus(), row.resolved);
        EXPECT_EQ(data.activeApp() ? data.activeApp()->name() : "", row.active);
        EXPECT_EQ(t->fetchCount, row.zoom == S::onMute || row.zoom == S::offMute ? 0 : 1);
    }
}

TEST_F(WatcherTest, TheActiveApplicationKeepsPriorityAndIsAloneAsked) {
    auto z = scripted("Zoom", S::noMeeting);
    auto t = scripted("Tuple", S::onMute);
    build().poll();
    ASSERT_EQ(data.activeApp(), t);

    z->status = S::offMute;
    watcher->poll();
    watcher->poll();
    EXPECT_EQ(data.activeApp(), t);
    EXPECT_EQ(data.readStatus(), S::onMute);
    EXPECT_EQ(z->fetchCount, 1) << "while Tuple stays in its meeting Zoom is not asked";
    EXPECT_EQ(t->fetchCount, 3);
}

TEST_F(WatcherTest, LeavingAMeetingAsksTheActiveApplicationTwice) {
    auto z = scripted("Zoom", S::noMeeting);
    auto t = scripted("Tuple", S::offMute);
    build().poll();
    t->status = S::noMeeting;
    watcher->poll();
    EXPECT_EQ(t->fetchCount, 3);
    EXPECT_EQ(z->fetchCount, 2);
    EXPECT_EQ(data.activeApp(), nullptr);
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
}

TEST_F(WatcherTest, ZoomsCachedButtonIsForgottenWhenTheMeetingSituationChanges) {
    ax.setTrusted(true);
    data.setHasAXAccess(true);
    zoomTree.meeting({"Mute Audio"});
    auto z = zoom();
    auto t = scripted("Tuple", S::noMeeting);
    build();
    const auto button = zoomTree.item("Mute Audio");

    at(1);
    watcher->poll();
    ASSERT_EQ(data.activeApp(), z);
    z->setMuteButton(button);
    at(2);
    watcher->poll();
    EXPECT_EQ(z->muteButton(), button) << "kept while Zoom stays in its meeting";

    // Shown status noMeeting while Zoom is active: a reading withheld after a
    // toggle made from noMeeting.
    data.setStatus(S::noMeeting);
    at(2.5);
    data.toggleMute();
    ASSERT_EQ(data.truestStatus(), S::noMeeting);
    z->setMuteButton(button);
    at(3);
    watcher->poll();
    ASSERT_EQ(data.activeApp(), z);
    EXPECT_EQ(z->muteButton(), nullptr);

    // Zoom leaving its meeting for Tuple's.
    at(5);
    watcher->poll();
    z->setMuteButton(button);
    zoomTree.menuBar->children.erase(zoomTree.menuBar->children.begin() + 2);
    t->status = S::onMute;
    at(6);
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
        int toggles;
    };
    const std::vector<Row> rows = {
        {"key absent", std::nullopt, S::noMeeting, S::offMute, 1},
        {"key true", true, S::noMeeting, S::offMute, 1},
        {"key false", false, S::noMeeting, S::offMute, 0},
        {"key as text NO", std::string("NO"), S::noMeeting, S::offMute, 0},
        {"joined muted", std::nullopt, S::noMeeting, S::onMute, 0},
        {"already live at start", std::nullopt, S::error, S::offMute, 0},
    };
    for (const auto& row : rows) {
        apps.clear();
        defaults.removeObject("muteOnJoin_Zoom");
        if (row.stored) {
            defaults.setObject("muteOnJoin_Zoom", *row.stored);
        }
        UserData fresh{menu, clock, out};
        if (row.before != S::error) {
            fresh.setStatus(row.before);
        }
        auto z = std::make_shared<ScriptedMeetingApp>("Zoom");
        z->status = row.joined;
        apps.push_back(z);
        Watcher w(fresh, apps, {}, {}, ax, defaults, timers, out);
        out.clear();
        w.poll();
        EXPECT_EQ(z->toggleCount(), row.toggles) << row.what;
        const Lines lines = events();
        const bool printed = std::find(lines.begin(), lines.end(),
                                       "TOGGLING (auto-mute on join for Zoom)") != lines.end();
        EXPECT_EQ(printed, row.toggles == 1) << row.what;
        w.poll();
        EXPECT_EQ(z->toggleCount(), row.toggles) << row.what << ": not again on the next tick";
    }
}

TEST_F(WatcherTest, PermissionGainedWaitsForAStatusOtherThanSetupError) {
    auto z = scripted("Zoom", S::setupError);
    build();
    ax.setTrusted(true);
    watcher->poll();
    watcher->poll();
    EXPECT_EQ(events(), Lines{});
    EXPECT_FALSE(data.hasAXAccess());
    EXPECT_TRUE(axChanges.empty());

    z->status = S::noMeeting;
    const auto snapshots = data.statusCounts();
    watcher->poll();
    EXPECT_EQ(events(), Lines{"SET TRUE noMeeting"});
    EXPECT_TRUE(data.hasAXAccess());
    EXPECT_EQ(axChanges, std::vector<bool>{true});
    EXPECT_EQ(data.statusCounts(), snapshots + 2) << "the reading's snapshot and the change's";
    EXPECT_TRUE(data.statusHistory().front().hasAX);
}

TEST_F(WatcherTest, PermissionLostIsReportedOnce) {
    scripted("Zoom", S::noMeeting);
    data.setHasAXAccess(true);
    build();
    ax.setTrusted(false);
    watcher->poll();
    EXPECT_EQ(out.take(), (Lines{"GOT AX:  false", "SET FALSE EARLY"}));
    watcher->poll();
    EXPECT_EQ(out.take(), Lines{"GOT AX:  false"});
    EXPECT_EQ(axChanges, std::vector<bool>{false});
    EXPECT_FALSE(data.hasAXAccess());
}

TEST_F(WatcherTest, ErrorShownWhileZoomIsActiveDropsThePermissionLate) {
    ax.setTrusted(true);
    data.setHasAXAccess(true);
    zoomTree.meeting({"Mute Audio"});
    auto z = zoom();
    build();
    at(1);
    watcher->poll();
    ASSERT_EQ(data.activeApp(), z);

    // The store shows error, and a toggle keeps the next reading out.
    at(1.1);
    data.setStatus(S::error);
    at(3.2);
    data.setStatus(S::error);
    ASSERT_EQ(data.truestStatus(), S::error);
    at(3.3);
    data.toggleMute();
    out.clear();
    at(4);
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

TEST_F(WatcherTest, WithoutApplicationsEveryTickIsNoMeeting) {
    ax.setTrusted(false);
    build();
    watcher->poll();
    watcher->poll();
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
    EXPECT_EQ(events(), Lines{});
    EXPECT_TRUE(setupReports.empty());
}

} // namespace
} // namespace hg
