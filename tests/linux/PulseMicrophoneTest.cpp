// The system microphone against a real audio server: PipeWire with
// wireplumber and pipewire-pulse on the private desktop's runtime folder and
// bus, a virtual source as the default input, parecord as the call app that
// records from it, and pactl as the judge of its mute.

#include "backends/linux/PulseMicrophone.hpp"

#include "PipeWireSession.hpp"
#include "backends/fake/BufferLineSink.hpp"

#include <QDir>
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
    int changes = 0;
    mic.setChangeHandler([&changes] { ++changes; });
    const std::string input = Audio::source;
    EXPECT_EQ(mic.defaultInput(), input);
    EXPECT_EQ(mic.isRecording(input), false);
    EXPECT_EQ(mic.isMuted(input), false);
    EXPECT_EQ(mic.isRecording("no such input"), std::nullopt);

    // Each change that alters an answer is announced from the main loop.
    auto call = Audio::record();
    ASSERT_TRUE(waitUntil([&] { return changes > 0; })) << "a new recording is announced";
    EXPECT_EQ(mic.isRecording(input), true);
    ASSERT_TRUE(mic.setMuted(input, true));
    EXPECT_EQ(Audio::sourceMute(), "yes");
    changes = 0;
    Audio::setSourceMute(false);
    EXPECT_TRUE(waitUntil([&] { return changes > 0; })) << "a change made elsewhere";
    EXPECT_EQ(mic.isMuted(input), false);

    changes = 0;
    call.reset();
    EXPECT_TRUE(waitUntil([&] { return changes > 0; })) << "the end of the recording";
    EXPECT_EQ(mic.isRecording(input), false);

    // The server hangs while there is an input to mute: the mute gives up,
    // and the answers are "unknown" until the server answers again.
    server_->signalPulseServer(SIGSTOP);
    EXPECT_FALSE(mic.setMuted(input, true));
    EXPECT_THAT(out.lines(), Contains("Microphone: lost the audio server (no answer in time)"));
    EXPECT_FALSE(mic.isMuted(input).has_value());
    EXPECT_FALSE(mic.isRecording(input).has_value());
    server_->signalPulseServer(SIGCONT);

    // The input vanishes while recorded: the server falls back to a sink's
    // monitor, which is no microphone.
    call = Audio::record();
    ASSERT_TRUE(waitUntil([&] { return mic.isRecording(input) == true; }));
    Audio::removeSource();
    EXPECT_TRUE(waitUntil([&] { return mic.isRecording(mic.defaultInput()) == false; }));
    EXPECT_EQ(mic.isRecording(input), std::nullopt);

    // The server goes away: the answers say so, without a crash.
    server_->stop();
    EXPECT_EQ(mic.defaultInput(), "");
    EXPECT_FALSE(mic.setMuted(input, true));
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

// The mute the program puts on is bookkeeping: whatever happens during the
// call, the input ends unmuted once no call records from it, never before.
TEST_F(RealMicrophone, TheProgramLiftsItsMuteOnceNoCallRecordsWhateverHappensMeanwhile) {
    const std::string config = DesktopSession::shared()->scratchDir() + "/microphone-book-config";
    const std::vector<std::string> start{"env", "XDG_CONFIG_HOME=" + config, "QT_QPA_PLATFORM=xcb",
                                         HG_DESKTOP_PROGRAM};
    const std::string log = DesktopSession::shared()->scratchDir() + "/hushgremlin-book.log";
    QDir().mkpath(QString::fromStdString(config + "/HushGremlin"));
    QSettings settings(QString::fromStdString(config + "/HushGremlin/HushGremlin.conf"),
                       QSettings::IniFormat);
    settings.setValue("muteMicrophoneInOtherApps", true);
    settings.sync();
    // With the desktop's accessibility off, as here, the microphone works in
    // full all the same.
    auto program = std::make_unique<ChildProcess>(start, log);
    // A call already live at the first reading is no join: one more tick.
    ASSERT_TRUE(program->waitForLine("GOT AX"));
    ASSERT_TRUE(program->waitForLine("GOT AX"));
    // Muted on join; nothing while it stays muted for `span`.
    const auto joined = [] { return waitUntil([] { return Audio::sourceMute() == "yes"; }); };
    const auto staysMuted = [](std::chrono::milliseconds span) {
        const auto end = std::chrono::steady_clock::now() + span;
        while (std::chrono::steady_clock::now() < end) {
            if (Audio::sourceMute() != "yes") {
                return false;
            }
        }
        return true;
    };
    const auto lifted = [](const char* input) {
        return waitUntil([input] { return Audio::mute(input) == "no"; });
    };

    // The call reopens its stream half a second later: the same call.
    auto call = Audio::record();
    ASSERT_TRUE(joined());
    call.reset();
    std::this_thread::sleep_for(500ms);
    call = Audio::record();
    EXPECT_TRUE(staysMuted(2500ms)) << "made live between two streams of one call";
    call.reset();
    EXPECT_TRUE(lifted(Audio::source));

    // A headset becomes the default input while the call goes on: wherever
    // the call's stream goes, it ends up muted and stays so, and both inputs
    // are live once it ends. (The server moves the stream before it says so;
    // how long that leaves it live is measured by scripts/measure-microphone.)
    constexpr const char* headset = "hg_headset_mic";
    ASSERT_TRUE(Audio::addSource(headset));
    call = Audio::record();
    ASSERT_TRUE(joined());
    Audio::setDefaultSource(headset);
    EXPECT_TRUE(waitUntil([&] { return Audio::mute(headset) == "yes"; }))
        << "the new default input is muted with the call";
    const auto until = std::chrono::steady_clock::now() + 1500ms;
    bool silent = true;
    while (std::chrono::steady_clock::now() < until) {
        silent = silent && Audio::recordingsSilent();
    }
    EXPECT_TRUE(silent) << "the call recorded live after the default input changed";
    call.reset();
    EXPECT_TRUE(lifted(Audio::source)) << "the old input's mute is remembered";
    EXPECT_TRUE(lifted(headset));
    Audio::setDefaultSource(Audio::source);

    // The switch is turned off mid-call, from another process: the input
    // stays muted while the call records, and is live once it ends.
    call = Audio::record();
    ASSERT_TRUE(joined());
    settings.setValue("muteMicrophoneInOtherApps", false);
    settings.sync();
    EXPECT_TRUE(waitUntil([] { return command("status") == "noMeeting"; }));
    EXPECT_TRUE(staysMuted(1000ms)) << "made live when the switch went off";
    call.reset();
    EXPECT_TRUE(lifted(Audio::source)) << "left muted when the switch went off";
    settings.setValue("muteMicrophoneInOtherApps", true);
    settings.sync();
    ASSERT_TRUE(waitUntil([] { return command("status") == "noMeeting"; }));

    // Ended mid-call: the input stays muted while the call records, and the
    // next start lifts the mute once it ends.
    call = Audio::record();
    ASSERT_TRUE(joined());
    program->signal(SIGTERM);
    ASSERT_TRUE(program->waitForLine("Goodbye cruel world!"));
    program.reset();
    EXPECT_TRUE(staysMuted(1000ms));
    program = std::make_unique<ChildProcess>(start, log);
    ASSERT_TRUE(program->waitForLine("Microphone: lifting the mute an earlier run left on"));
    EXPECT_TRUE(staysMuted(1500ms));
    call.reset();
    EXPECT_TRUE(lifted(Audio::source));

    // The server restarts mid-call: unreachable is not "nothing records",
    // and the program finds its input again.
    call = Audio::record();
    ASSERT_TRUE(joined());
    std::string whyNot;
    ASSERT_TRUE(server_->restartPulseServer(whyNot)) << whyNot;
    // The virtual source went with the server; a real device's mute outlives
    // it, as this one's does now.
    Audio::setSourceMute(true);
    call.reset();
    EXPECT_TRUE(lifted(Audio::source)) << "a mute the book still holds";
    EXPECT_THAT(program->linesRead(), Not(Contains(HasSubstr("could not unmute"))));
    program->signal(SIGTERM);
    ASSERT_TRUE(program->waitForLine("Goodbye cruel world!"));
    settings.sync();
    EXPECT_FALSE(settings.contains("microphoneMutedInputs"));
    EXPECT_THAT(program->linesRead(), Contains("GOT AX:  false"));
}

} // namespace
} // namespace hg::test
