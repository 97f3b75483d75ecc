// The same cases against the in-memory fake and the AT-SPI backend with the
// fixture application: what the Zoom adapter reads and does must not depend
// on which one stands behind the accessibility port.

#include "MeetingWorld.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "apps/ZoomMeetingApp.hpp"
#include "platform/fake/BufferLineSink.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace hg::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AccessibilityContract : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (GetParam() == "fake") {
            world_ = makeFakeWorld();
        } else {
            std::string whyNot;
            world_ = makeAtspiWorld(whyNot);
            if (!world_) {
                GTEST_SKIP() << "AT-SPI backend not testable here: " << whyNot;
            }
        }
        zoom_ = std::make_unique<ZoomMeetingApp>(world_->accessibility(),
                                                 world_->runningApplications(), out_);
    }

    MeetingWorld& world() { return *world_; }
    ZoomMeetingApp& zoom() { return *zoom_; }
    std::vector<std::string> lines() { return out_.take(); }

    BufferLineSink out_;
    std::unique_ptr<MeetingWorld> world_;
    std::unique_ptr<ZoomMeetingApp> zoom_;
};

TEST_P(AccessibilityContract, ReadsTheMeetingStateFromTheMenu) {
    struct Step {
        const char* command;
        MeetingStatus expected;
    };
    const Step steps[] = {
        {"state", MeetingStatus::noMeeting}, {"join", MeetingStatus::offMute},
        {"mute", MeetingStatus::onMute},     {"unmute", MeetingStatus::offMute},
        {"leave", MeetingStatus::noMeeting}, {"join muted", MeetingStatus::onMute},
        {"both", MeetingStatus::offMute},    {"leave", MeetingStatus::noMeeting},
    };
    for (const auto& step : steps) {
        world().command(step.command);
        EXPECT_EQ(zoom().fetchStatus(), step.expected) << "after " << step.command;
    }
    // Only the state with both items says anything.
    EXPECT_THAT(lines(), ElementsAre("BOTH BUTTONS!"));
}

TEST_P(AccessibilityContract, PressingTheItemFlipsTheApplicationsMute) {
    world().command("join");

    EXPECT_EQ(zoom().toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    EXPECT_EQ(world().awaitState(), "muted");
    EXPECT_EQ(zoom().fetchStatus(), MeetingStatus::onMute);
    EXPECT_THAT(lines(), ElementsAre("GETTING BUTTON"));

    // The cached item is pressed again without a lookup, whatever its title now.
    EXPECT_EQ(zoom().toggleMute(MeetingStatus::onMute), MeetingStatus::offMute);
    EXPECT_EQ(world().awaitState(), "unmuted");
    EXPECT_EQ(zoom().fetchStatus(), MeetingStatus::offMute);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_P(AccessibilityContract, ADisabledItemIsRefusedNotSilentlyPressed) {
    world().command("join");
    world().command("disable");

    EXPECT_EQ(zoom().toggleMute(MeetingStatus::offMute), MeetingStatus::error);
    EXPECT_EQ(world().awaitState(), "unmuted disabled");
    EXPECT_EQ(zoom().muteButton(), nullptr);
    EXPECT_THAT(lines(), ElementsAre("GETTING BUTTON", "CANT COMplete",
                                     "Unexpected TOGGLE error: HushGremlin.SwiftAXError"));
}

TEST_P(AccessibilityContract, BothItemsLeaveNothingToPress) {
    world().command("join");
    world().command("both");

    EXPECT_EQ(zoom().toggleMute(MeetingStatus::offMute), MeetingStatus::error);
    EXPECT_EQ(world().awaitState(), "unmuted both");
    EXPECT_THAT(lines(), ElementsAre("GETTING BUTTON", "BOTH BUTTONS!", "NO BUTTON"));
}

TEST_P(AccessibilityContract, AnApplicationKilledMidWalkInvalidatesItsElements) {
    world().command("join");
    AXAccess access(world().accessibility(), world().runningApplications(), out_);
    const AXElementRef menuBar = access.copyMenuBar(world().appPid());
    ASSERT_EQ(zoom().toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    lines();

    world().kill();

    try {
        (void)access.findChild(menuBar, "Meeting", false);
        ADD_FAILURE() << "the walk went on in a dead application";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::invalidUIElement);
    }
    EXPECT_THAT(lines(), ElementsAre("NODICE", "WTFMATE"));

    // The cached item is dead too: the toggle fails and forgets it.
    EXPECT_EQ(zoom().toggleMute(MeetingStatus::onMute), MeetingStatus::error);
    EXPECT_EQ(zoom().muteButton(), nullptr);
    EXPECT_THAT(lines(), ElementsAre("UNSUCCESS PRESSING",
                                     "Unexpected TOGGLE error: HushGremlin.SwiftAXError"));
    EXPECT_EQ(zoom().fetchStatus(), MeetingStatus::notRunning);
}

TEST_P(AccessibilityContract, AStoppedApplicationCostsOneTimeOutAndRecovers) {
    world().command("join muted");
    world().freeze();

    EXPECT_EQ(zoom().fetchStatus(), MeetingStatus::error);
    EXPECT_THAT(lines(), ElementsAre("CANT COMplete",
                                     "Unexpected meeting AX error: HushGremlin.SwiftAXError"));

    world().thaw();
    EXPECT_EQ(zoom().fetchStatus(), MeetingStatus::onMute);
    EXPECT_THAT(lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Backends, AccessibilityContract, ::testing::Values("fake", "atspi"),
                         [](const ::testing::TestParamInfo<std::string>& p) { return p.param; });

} // namespace
} // namespace hg::test
