#include "core/UserData.hpp"

#include "menu/GremlinMenu.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeClock.hpp"
#include "backends/fake/FakeStatusItem.hpp"
#include "support/ScriptedMeetingApp.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using S = MeetingStatus;
using Lines = std::vector<std::string>;

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
    // A reading at `seconds`; returns what is shown afterwards.
    S readAt(double seconds, S status) {
        at(seconds);
        data.setStatus(status);
        return data.truestStatus();
    }
};

TEST_F(UserDataTest, ReadingsAreWithheldForLessThanTheQuietTimeAfterAToggleEitherWay) {
    data.setActiveApp(app);
    show(S::onMute);
    at(10.0);
    data.toggleMute();
    const int sets = item.menuSetCount();
    for (const double t : {11.0, 11.499999, 9.0}) {
        EXPECT_EQ(readAt(t, S::noMeeting), S::offMute) << t;
    }
    EXPECT_EQ(data.readStatus(), S::noMeeting);
    EXPECT_EQ(item.menuSetCount(), sets);
    EXPECT_EQ(readAt(11.5, S::noMeeting), S::noMeeting);

    show(S::onMute);
    at(20.0);
    data.toggleMute();
    EXPECT_EQ(readAt(18.5, S::noMeeting), S::noMeeting) << "a clock set back counts too";
}

TEST_F(UserDataTest, AnErrorIsShownOnlyOnceItPersistsForTwoSeconds) {
    show(S::onMute);
    EXPECT_EQ(readAt(10.0, S::error), S::onMute);
    EXPECT_EQ(readAt(11.0, S::error), S::onMute);
    EXPECT_EQ(out.lines(), (Lines{"setting recent err", "Skipping recent err"}));
    EXPECT_EQ(item.image(), "OnMuteIcon");
    EXPECT_EQ(readAt(12.5, S::error), S::error);
    EXPECT_EQ(item.image(), "ErrorIcon");
    EXPECT_EQ(out.lines().size(), 2U) << "showing the error prints nothing";
    EXPECT_EQ(data.firstError(), Instant{} + std::chrono::seconds(10)) << "the run's start is kept";

    show(S::offMute);
    data.setStatus(S::error);
    EXPECT_EQ(readAt(14.499999, S::error), S::offMute);
    EXPECT_EQ(readAt(14.5, S::error), S::error) << "exactly two seconds is enough";
}

TEST_F(UserDataTest, ANonErrorReadingRestartsTheErrorClock) {
    show(S::noMeeting);
    const S sequence[] = {S::error, S::offMute, S::error, S::error};
    for (const auto s : sequence) {
        data.setStatus(s);
        EXPECT_NE(data.truestStatus(), S::error) << clock.elapsedSeconds();
        clock.advanceSeconds(1.0);
    }
    EXPECT_EQ(out.lines(),
              (Lines{"setting recent err", "setting recent err", "Skipping recent err"}));
}

TEST_F(UserDataTest, AReadingWithheldByTheQuietTimeDoesNotRestartTheErrorClock) {
    data.setActiveApp(app);
    show(S::setupError);
    data.setStatus(S::error); // t=0: the run starts
    at(0.5);
    data.toggleMute(); // carried out; quiet until 2.0
    readAt(1.0, S::offMute);
    EXPECT_EQ(readAt(2.1, S::error), S::error);
}

TEST_F(UserDataTest, AFailedToggleRevertsAndStartsTheErrorRun) {
    data.setActiveApp(app);
    show(S::onMute);
    app->toggleAnswer = S::error;
    const auto imagesBefore = item.imageHistory().size();
    data.toggleMute();

    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(data.readStatus(), S::error);
    const Lines images(item.imageHistory().begin() + static_cast<std::ptrdiff_t>(imagesBefore),
                       item.imageHistory().end());
    EXPECT_EQ(images, (Lines{"OffMuteIcon", "OnMuteIcon"}));
    EXPECT_EQ(out.lines(), Lines{"setting recent err"});
    EXPECT_EQ(data.firstError(), clock.now());
    EXPECT_EQ(data.lastToggle(), Clock::distantPast()) << "no quiet time after a failure";

    app->toggleAnswer = S::noMeeting; // the meeting ended meanwhile: shown at once
    data.toggleMute();
    EXPECT_EQ(data.truestStatus(), S::noMeeting);
}

TEST_F(UserDataTest, RefreshAndToggleNeedAnActiveApplication) {
    show(S::onMute);
    const auto sets = item.menuSetCount();
    data.toggleMute();
    data.refreshStatus();
    EXPECT_EQ(data.truestStatus(), S::onMute);
    EXPECT_EQ(item.menuSetCount(), sets);
    EXPECT_EQ(out.lines(), Lines{"BUTTON PRESSED HERE!"});

    data.setActiveApp(app);
    app->status = S::offMute;
    data.refreshStatus();
    EXPECT_EQ(app->fetchCount, 1);
    EXPECT_EQ(data.truestStatus(), S::offMute);
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

TEST_F(UserDataTest, EverySetOfAPublishedFieldAnnouncesItselfBeforeTheChange) {
    int sends = 0;
    bool seenBefore = true;
    auto sub = data.objectWillChange().subscribe([&] {
        ++sends;
        seenBefore = data.hasAXAccess();
    });
    data.setHasAXAccess(false);
    EXPECT_EQ(sends, 1) << "also when the value does not change";
    data.setHasAXAccess(true);
    EXPECT_FALSE(seenBefore) << "observers hear of the change before it is made";
}

TEST_F(UserDataTest, HotkeyWithoutAMeetingOnlyWinksTheIcon) {
    data.setActiveApp(app);
    for (const auto status : {S::noMeeting, S::notRunning}) {
        show(status);
        const auto sets = item.menuSetCount();
        data.hotkeyDown();
        EXPECT_EQ(item.image(), "SideEyeIcon");
        EXPECT_EQ(item.menuSetCount(), sets);
        data.hotkeyUp();
        EXPECT_EQ(item.image(), "NoMeetingIcon");
        EXPECT_EQ(data.truestStatus(), status);
        EXPECT_EQ(app->toggleCount(), 0);
    }
}

TEST_F(UserDataTest, HotkeyInAFailedStateTogglesWithoutShowingAFlip) {
    data.setActiveApp(app);
    for (const auto status : {S::error, S::setupError}) {
        app->toggleFromStatuses.clear();
        clock.advanceSeconds(5);
        data.setStatus(status);
        clock.advanceSeconds(2);
        show(status);
        const auto sets = item.menuSetCount();
        data.hotkeyDown();
        data.hotkeyUp();
        EXPECT_EQ(app->toggleFromStatuses, (std::vector<S>{status, status})) << toString(status);
        EXPECT_EQ(data.truestStatus(), status);
        EXPECT_EQ(item.menuSetCount(), sets);
    }
}

} // namespace
} // namespace hg
