#include "core/UserData.hpp"

#include "menu/GremlinMenu.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeClock.hpp"
#include "platform/fake/FakeStatusItem.hpp"
#include "support/ScriptedMeetingApp.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using S = MeetingStatus;

class UserDataTest : public ::testing::Test {
protected:
    FakeClock clock;
    FakeStatusItem item;
    GremlinMenu menu{item, {}};
    BufferLineSink out;
    UserData data{menu, clock, out};
    std::shared_ptr<ScriptedMeetingApp> app = std::make_shared<ScriptedMeetingApp>();

    // Shows `status` through an ordinary accepted reading, then starts the
    // line buffer afresh.
    void show(S status) {
        data.setStatus(status);
        ASSERT_EQ(data.truestStatus(), status);
        out.clear();
    }
    void at(double seconds) {
        clock.set(Instant{} + std::chrono::duration_cast<Duration>(Seconds(seconds)));
    }
};

TEST_F(UserDataTest, StartsWithErrorAndLeavesTheMenuAlone) {
    EXPECT_EQ(data.truestStatus(), S::error);
    EXPECT_EQ(data.readStatus(), S::error);
    EXPECT_FALSE(data.hasAXAccess());
    EXPECT_TRUE(data.statusHistory().empty());
    EXPECT_EQ(data.statusCounts(), 0);
    EXPECT_FALSE(data.firstError());
    EXPECT_EQ(data.lastToggle(), Clock::distantPast());
    EXPECT_EQ(item.menuSetCount(), 1) << "only the menu's own first build";
    EXPECT_EQ(item.image(), "NoMeetingIcon");
}

TEST_F(UserDataTest, EveryAcceptedReadingRebuildsTheMenuEvenWhenUnchanged) {
    data.setStatus(S::onMute);
    data.setStatus(S::onMute);
    EXPECT_EQ(item.menuSetCount(), 3);
    EXPECT_EQ(item.image(), "OnMuteIcon");
    EXPECT_EQ(item.menu(), GremlinMenu::buildMenu(S::onMute, false));
    EXPECT_TRUE(out.lines().empty());
}

TEST_F(UserDataTest, ReadingsAreWithheldForStrictlyLessThanTheQuietTimeAfterAToggle) {
    struct Case {
        double after;
        bool accepted;
    };
    const Case cases[] = {{0.0, false}, {1.0, false}, {1.499999, false}, {1.5, true}, {4.0, true}};
    for (const auto& c : cases) {
        FakeClock caseClock;
        FakeStatusItem caseItem;
        GremlinMenu caseMenu{caseItem, {}};
        BufferLineSink caseOut;
        UserData d{caseMenu, caseClock, caseOut};
        d.setActiveApp(app);
        d.setStatus(S::onMute);
        caseClock.advanceSeconds(10);
        d.toggleMute();
        ASSERT_EQ(d.lastToggle(), caseClock.now());
        const auto sets = caseItem.menuSetCount();
        const auto history = d.statusHistory().size();

        caseClock.advanceSeconds(c.after);
        d.setStatus(S::noMeeting);
        EXPECT_EQ(d.readStatus(), S::noMeeting) << c.after;
        EXPECT_EQ(d.statusHistory().size(), std::min<std::size_t>(history + 1, 10)) << c.after;
        EXPECT_EQ(d.truestStatus(), c.accepted ? S::noMeeting : S::offMute) << c.after;
        EXPECT_EQ(caseItem.menuSetCount(), sets + (c.accepted ? 1 : 0)) << c.after;
    }
}

TEST_F(UserDataTest, QuietTimeCountsBothWaysWhenTheClockGoesBack) {
    data.setActiveApp(app);
    show(S::onMute);
    at(100);
    data.toggleMute();
    at(99);
    data.setStatus(S::noMeeting);
    EXPECT_EQ(data.truestStatus(), S::offMute);
    at(98.5);
    data.setStatus(S::noMeeting);
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
}

TEST_F(UserDataTest, AnErrorIsShownOnlyOnceItPersistsForTwoSeconds) {
    show(S::onMute);
    at(10.0);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(data.firstError(), clock.now());
    at(11.0);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(out.lines(), (std::vector<std::string>{"setting recent err", "Skipping recent err"}));
    EXPECT_EQ(item.image(), "OnMuteIcon");

    at(12.5);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::error);
    EXPECT_EQ(item.image(), "ErrorIcon");
    EXPECT_EQ(out.lines().size(), 2U) << "showing the error prints nothing";
    EXPECT_EQ(data.firstError(), Instant{} + std::chrono::seconds(10)) << "the run's start is kept";

    at(12.6);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::error) << "a persisting run keeps showing";
}

TEST_F(UserDataTest, AnErrorExactlyTwoSecondsAfterTheFirstIsShown) {
    show(S::offMute);
    data.setStatus(S::error);
    clock.advanceSeconds(1.999999);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::offMute);
    at(2.0);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::error);
}

TEST_F(UserDataTest, ANonErrorReadingRestartsTheErrorClock) {
    show(S::noMeeting);
    const S sequence[] = {S::error, S::offMute, S::error, S::error};
    for (const auto s : sequence) {
        data.setStatus(s);
        EXPECT_NE(data.truestStatus(), S::error) << clock.elapsedSeconds();
        clock.advanceSeconds(1.0);
    }
    EXPECT_EQ(out.lines(), (std::vector<std::string>{"setting recent err", "setting recent err",
                                                     "Skipping recent err"}));
}

TEST_F(UserDataTest, AReadingWithheldByTheQuietTimeDoesNotRestartTheErrorClock) {
    data.setActiveApp(app);
    show(S::setupError);
    data.setStatus(S::error); // t=0: the run starts
    at(0.5);
    data.toggleMute(); // carried out; quiet until 2.0
    at(1.0);
    data.setStatus(S::offMute);
    EXPECT_TRUE(data.firstError());
    at(2.1);
    data.setStatus(S::error);
    EXPECT_EQ(data.truestStatus(), S::error);
}

TEST_F(UserDataTest, ToggleShowsTheFlipBeforeTheApplicationAnswers) {
    data.setActiveApp(app);
    show(S::onMute);
    S seenDuringCall = S::error;
    std::string iconDuringCall;
    app->onToggle = [&] {
        seenDuringCall = data.truestStatus();
        iconDuringCall = item.image();
    };
    const auto historyBefore = data.statusHistory().size();
    at(3.0);
    data.toggleMute();

    EXPECT_EQ(app->toggleFromStatuses, std::vector<S>{S::onMute});
    EXPECT_EQ(seenDuringCall, S::offMute);
    EXPECT_EQ(iconDuringCall, "OffMuteIcon");
    EXPECT_EQ(data.truestStatus(), S::offMute);
    EXPECT_EQ(data.lastToggle(), clock.now());
    ASSERT_EQ(data.statusHistory().size(), historyBefore + 1);
    EXPECT_EQ(data.statusHistory().front().truest, S::offMute);
    EXPECT_TRUE(out.lines().empty());

    data.toggleMute();
    EXPECT_EQ(app->toggleFromStatuses, (std::vector<S>{S::onMute, S::offMute}));
    EXPECT_EQ(data.truestStatus(), S::onMute);
}

TEST_F(UserDataTest, AFailedToggleRevertsAndStartsTheErrorRun) {
    data.setActiveApp(app);
    show(S::onMute);
    app->toggleAnswer = S::error;
    const auto lastToggle = data.lastToggle();
    const auto imagesBefore = item.imageHistory().size();
    data.toggleMute();

    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(data.readStatus(), S::error);
    const std::vector<std::string> images(item.imageHistory().begin() +
                                              static_cast<std::ptrdiff_t>(imagesBefore),
                                          item.imageHistory().end());
    EXPECT_EQ(images, (std::vector<std::string>{"OffMuteIcon", "OnMuteIcon"}));
    EXPECT_EQ(out.lines(), std::vector<std::string>{"setting recent err"});
    EXPECT_EQ(data.firstError(), clock.now());
    EXPECT_EQ(data.lastToggle(), lastToggle);
}

TEST_F(UserDataTest, AToggleThatDidNothingRecordsTheApplicationsAnswer) {
    data.setActiveApp(app);
    show(S::offMute);
    app->toggleAnswer = S::noMeeting;
    data.toggleMute();
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
    EXPECT_EQ(item.image(), "NoMeetingIcon");
}

TEST_F(UserDataTest, ToggleFromANonMeetingStatusShowsNothingUntilTheQuietTimeEnds) {
    data.setActiveApp(app);
    show(S::setupError);
    const auto sets = item.menuSetCount();
    int setsDuringCall = -1;
    app->onToggle = [&] { setsDuringCall = item.menuSetCount(); };
    data.toggleMute();
    EXPECT_EQ(setsDuringCall, sets);
    EXPECT_EQ(app->toggleFromStatuses, std::vector<S>{S::setupError});
    EXPECT_EQ(data.truestStatus(), S::setupError);
    EXPECT_EQ(data.lastToggle(), clock.now());

    at(1.4);
    data.setStatus(S::offMute);
    EXPECT_EQ(data.truestStatus(), S::setupError);
    at(1.5);
    data.setStatus(S::offMute);
    EXPECT_EQ(data.truestStatus(), S::offMute);
}

TEST_F(UserDataTest, WithoutAnActiveApplicationToggleAndRefreshDoNothing) {
    show(S::onMute);
    const auto sets = item.menuSetCount();
    const auto counts = data.statusCounts();
    data.toggleMute();
    data.refreshStatus();
    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(item.menuSetCount(), sets);
    EXPECT_EQ(data.statusCounts(), counts);
    EXPECT_EQ(out.lines(), std::vector<std::string>{"BUTTON PRESSED HERE!"});
}

TEST_F(UserDataTest, RefreshReadsTheActiveApplicationThroughTheReadingRules) {
    data.setActiveApp(app);
    app->status = S::offMute;
    data.refreshStatus();
    EXPECT_EQ(app->fetchCount, 1);
    EXPECT_EQ(data.truestStatus(), S::offMute);
    app->status = S::error;
    data.refreshStatus();
    EXPECT_EQ(data.truestStatus(), S::offMute);
    EXPECT_EQ(out.lines(), (std::vector<std::string>{"BUTTON PRESSED HERE!", "BUTTON PRESSED HERE!",
                                                     "setting recent err"}));
}

TEST_F(UserDataTest, HistoryKeepsTheNewestTenWithFallingIds) {
    for (int i = 0; i < 25; ++i) {
        data.recordHistory();
    }
    EXPECT_EQ(data.statusCounts(), 25);
    ASSERT_EQ(data.statusHistory().size(), 10U);
    for (std::size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(data.statusHistory()[i].id, 24 - static_cast<std::int64_t>(i));
    }
}

TEST_F(UserDataTest, AReadingsSnapshotPairsTheNewReadWithTheOldTruest) {
    data.setHasAXAccess(true);
    data.setStatus(S::onMute);
    EXPECT_EQ(data.statusHistory().front(), (StatusSet{0, S::error, S::onMute, true}));
}

TEST_F(UserDataTest, EverySetOfAPublishedFieldAnnouncesItselfBeforeTheChange) {
    int sends = 0;
    bool seenBefore = true;
    auto sub = data.objectWillChange().subscribe([&] {
        ++sends;
        seenBefore = data.hasAXAccess();
    });
    data.setHasAXAccess(false);
    data.setHasAXAccess(false);
    EXPECT_EQ(sends, 2) << "also when the value does not change";
    EXPECT_FALSE(seenBefore);
    data.setHasAXAccess(true);
    EXPECT_FALSE(seenBefore) << "observers hear of the change before it is made";

    sends = 0;
    data.setStatus(S::noMeeting);
    EXPECT_EQ(sends, 3) << "readStatus, statusHistory, truestStatus";
    sends = 0;
    data.setStatus(S::noMeeting);
    EXPECT_EQ(sends, 3);
}

TEST_F(UserDataTest, TrimmingTheHistorySetsTheListTwice) {
    for (int i = 0; i < 9; ++i) {
        data.recordHistory();
    }
    int sends = 0;
    auto sub = data.objectWillChange().subscribe([&] { ++sends; });
    data.recordHistory(); // the tenth: no trim
    EXPECT_EQ(sends, 1);
    data.recordHistory();
    EXPECT_EQ(sends, 3);
}

TEST_F(UserDataTest, HotkeyWithoutAMeetingOnlyWinksTheIcon) {
    for (const auto status : {S::noMeeting, S::notRunning}) {
        data.setActiveApp(app);
        show(status);
        const auto sets = item.menuSetCount();
        int sends = 0;
        auto sub = data.objectWillChange().subscribe([&] { ++sends; });

        data.hotkeyDown();
        EXPECT_EQ(item.image(), "SideEyeIcon");
        EXPECT_EQ(item.menuSetCount(), sets);
        EXPECT_EQ(sends, 0);
        EXPECT_EQ(app->toggleCount(), 0);

        data.hotkeyUp();
        EXPECT_EQ(item.image(), "NoMeetingIcon");
        EXPECT_EQ(item.menuSetCount(), sets + 1);
        EXPECT_EQ(item.menu(), GremlinMenu::buildMenu(status, false));
        EXPECT_EQ(data.truestStatus(), status);
        EXPECT_EQ(app->toggleCount(), 0);
    }
}

TEST_F(UserDataTest, HotkeyOtherwiseTogglesOnPressAndRelease) {
    data.setActiveApp(app);
    show(S::onMute);
    data.hotkeyDown();
    EXPECT_EQ(data.truestStatus(), S::offMute);
    data.hotkeyUp();
    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(app->toggleFromStatuses, (std::vector<S>{S::onMute, S::offMute}));

    for (const auto status : {S::error, S::setupError}) {
        app->toggleFromStatuses.clear();
        clock.advanceSeconds(5);
        data.setStatus(status);
        clock.advanceSeconds(2);
        show(status);
        data.hotkeyDown();
        data.hotkeyUp();
        EXPECT_EQ(app->toggleFromStatuses, (std::vector<S>{status, status})) << toString(status);
    }
}

} // namespace
} // namespace hg
