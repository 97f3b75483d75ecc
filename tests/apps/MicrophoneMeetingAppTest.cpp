#include "apps/MicrophoneMeetingApp.hpp"

#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeMicrophone.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

struct MicrophoneMeetingAppTest : ::testing::Test {
    FakeMicrophone mic;
    BufferLineSink out;
    MicrophoneMeetingApp app{mic, out};
};

TEST_F(MicrophoneMeetingAppTest, AFailingAudioServerIsNeverACallAndEveryToggleFails) {
    mic.recording = true;
    mic.failing = true;
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::notRunning);
    EXPECT_EQ(app.toggleMute(MeetingStatus::offMute), MeetingStatus::error);
    EXPECT_EQ(app.toggleMute(MeetingStatus::noMeeting), MeetingStatus::noMeeting);
    EXPECT_EQ(mic.requests(), std::vector<bool>{true}) << "nothing set outside a call";
    mic.failing = false;
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::offMute) << "the failed mute left it live";
}

TEST_F(MicrophoneMeetingAppTest, OnlyAMuteSetHereIsLiftedWhenTheRecordingEnds) {
    mic.recording = true;
    ASSERT_EQ(app.toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::onMute);
    mic.recording = false;
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::notRunning);
    EXPECT_FALSE(mic.muted);
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::notRunning);
    EXPECT_EQ(mic.requests().size(), 2U) << "lifted once";

    // Muted here, unmuted by the user elsewhere, muted again elsewhere: the
    // user's mute stays.
    mic.recording = true;
    ASSERT_EQ(app.toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    mic.muted = false;
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::offMute);
    mic.muted = true;
    mic.recording = false;
    EXPECT_EQ(app.fetchStatus(), MeetingStatus::notRunning);
    EXPECT_TRUE(mic.muted);
}

} // namespace
} // namespace hg
