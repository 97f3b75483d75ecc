// The system microphone against a real audio server: PipeWire with
// wireplumber and pipewire-pulse on the private desktop's runtime folder and
// bus, a virtual source as the default input, parecord as the call app that
// records from it, and pactl as the judge of its mute.

#include "backends/linux/PulseMicrophone.hpp"

#include "PipeWireSession.hpp"
#include "backends/fake/BufferLineSink.hpp"

#include <QSettings>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace hg::test {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

using Audio = PipeWireSession;

class RealMicrophone : public ::testing::Test {
protected:
    void SetUp() override {
        if (DesktopSession::shared() == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        makeQtApplication();
        std::string whyNot;
        server_ = Audio::start(whyNot);
        if (server_ == nullptr) {
            GTEST_SKIP() << whyNot;
        }
    }

    std::unique_ptr<Audio> server_;
};

TEST_F(RealMicrophone, TheBackendFollowsTheRecordingAndTheMuteAndSurvivesTheServer) {
    BufferLineSink out;
    PulseMicrophone mic(out);
    EXPECT_FALSE(mic.isInUse());
    EXPECT_EQ(mic.isMuted(), false);

    auto call = Audio::record();
    ASSERT_TRUE(waitUntil([&] { return mic.isInUse(); }));
    ASSERT_TRUE(mic.setMuted(true));
    EXPECT_EQ(Audio::sourceMute(), "yes");
    Audio::setSourceMute(false);
    EXPECT_TRUE(waitUntil([&] { return mic.isMuted() == false; })) << "a change made elsewhere";

    call.reset();
    EXPECT_TRUE(waitUntil([&] { return !mic.isInUse(); }));

    // The server hangs while there is an input to mute: the mute gives up,
    // and the answers are "not available" until the server answers again.
    server_->signalPulseServer(SIGSTOP);
    EXPECT_FALSE(mic.setMuted(true));
    EXPECT_THAT(out.lines(), Contains("Microphone: lost the audio server (no answer in time)"));
    EXPECT_FALSE(mic.isMuted().has_value());
    server_->signalPulseServer(SIGCONT);

    // The input vanishes while recorded: the server falls back to a sink's
    // monitor, which is no microphone.
    call = Audio::record();
    ASSERT_TRUE(waitUntil([&] { return mic.isInUse(); }));
    Audio::removeSource();
    EXPECT_TRUE(waitUntil([&] { return !mic.isInUse(); }));

    // The server goes away: the answers say so, without a crash.
    server_->stop();
    EXPECT_FALSE(mic.isInUse());
    EXPECT_FALSE(mic.setMuted(true));
}

// `hushgremlin WORD`, as a script runs it.
std::string command(const char* word) {
    return run(QStringLiteral(HG_DESKTOP_PROGRAM), {QString::fromLatin1(word)}).value_or("");
}

TEST_F(RealMicrophone, TheProgramMutesARecordingSourceOnlyWithTheSwitchOn) {
    const std::string config = DesktopSession::shared()->scratchDir() + "/microphone-config";
    const std::vector<std::string> start{"env", "XDG_CONFIG_HOME=" + config, "QT_QPA_PLATFORM=xcb",
                                         HG_DESKTOP_PROGRAM};
    const std::string log = DesktopSession::shared()->scratchDir() + "/hushgremlin.log";
    QSettings settings(QString::fromStdString(config + "/HushGremlin/HushGremlin.conf"),
                       QSettings::IniFormat);
    settings.remove("muteMicrophoneInOtherApps");
    settings.sync();
    Audio::setSourceMute(true);
    auto call = Audio::record();

    {
        // The switch is off: a recording is no call, and the shortcut leaves
        // the input alone. Two ticks pass before the program is asked.
        ChildProcess program(start, log);
        ASSERT_TRUE(program.waitForLine("GOT AX"));
        ASSERT_TRUE(program.waitForLine("GOT AX"));
        EXPECT_EQ(command("status"), "noMeeting");
        command("press");
        EXPECT_EQ(Audio::sourceMute(), "yes");
        command("release");
        program.signal(SIGTERM);
        ASSERT_TRUE(program.waitForLine("Goodbye cruel world!"));
        EXPECT_THAT(program.linesRead(), Not(Contains(HasSubstr("Microphone"))));
    }

    settings.setValue("muteMicrophoneInOtherApps", true);
    settings.sync();
    ChildProcess program(start, log);
    ASSERT_TRUE(waitUntil([] { return command("status") == "onMute"; }));
    command("press");
    EXPECT_TRUE(waitUntil([] { return Audio::sourceMute() == "no"; })) << "live while it is held";
    EXPECT_EQ(command("status"), "offMute");
    // Held longer than a tap.
    std::this_thread::sleep_for(300ms);
    command("release");
    EXPECT_TRUE(waitUntil([] { return Audio::sourceMute() == "yes"; }));

    call.reset();
    EXPECT_TRUE(waitUntil([] { return command("status") == "noMeeting"; }));
    EXPECT_EQ(Audio::sourceMute(), "no") << "the mute set during the call is lifted";
    program.signal(SIGTERM);
    ASSERT_TRUE(program.waitForLine("Goodbye cruel world!"));
    EXPECT_THAT(program.linesRead(), Contains("Microphone: connected to the audio server"));
}

} // namespace
} // namespace hg::test
