// The system microphone against a real audio server: PipeWire with
// wireplumber and pipewire-pulse on the private desktop's runtime folder and
// bus, a virtual source as the default input, parecord as the call app that
// records from it, and pactl as the judge of its mute.

#include "backends/linux/PulseMicrophone.hpp"

#include "DesktopSession.hpp"
#include "backends/fake/BufferLineSink.hpp"

#include <QProcess>
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

constexpr const char* source = "hg_fake_mic";

// Runs a command to its end; its standard output, trimmed, or none when it
// failed.
std::optional<std::string> run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(15000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        return std::nullopt;
    }
    return process.readAllStandardOutput().trimmed().toStdString();
}

std::optional<std::string> pactl(const QStringList& arguments) {
    return run(QStringLiteral("pactl"), arguments);
}

// "yes" or "no", as pactl reads the virtual source's mute.
std::string sourceMute() {
    const auto answer = pactl({QStringLiteral("get-source-mute"), QString::fromLatin1(source)});
    return answer ? answer->substr(answer->find(' ') + 1) : "unreadable";
}

void setSourceMute(bool muted) {
    pactl({QStringLiteral("set-source-mute"), QString::fromLatin1(source),
           muted ? QStringLiteral("1") : QStringLiteral("0")});
}

// The audio server of the private desktop, with the virtual source as its
// default input. The three daemons end with it.
class PipeWire {
public:
    static std::unique_ptr<PipeWire> start(std::string& whyNot) {
        std::unique_ptr<PipeWire> server(new PipeWire());
        const std::string logs = DesktopSession::shared()->scratchDir() + "/";
        ::unsetenv("PULSE_SERVER");
        for (const char* daemon : {"pipewire", "wireplumber", "pipewire-pulse"}) {
            server->daemons_.push_back(std::make_unique<ChildProcess>(
                std::vector<std::string>{daemon}, logs + daemon + ".log"));
        }
        if (!waitUntil([] { return pactl({QStringLiteral("info")}).has_value(); })) {
            whyNot = "PipeWire's PulseAudio server did not answer (see " + logs + "*.log)";
            return nullptr;
        }
        pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
               QStringLiteral("media.class=Audio/Source/Virtual"),
               QStringLiteral("sink_name=") + QString::fromLatin1(source),
               QStringLiteral("channel_map=mono")});
        const bool isDefault = waitUntil([] {
            pactl({QStringLiteral("set-default-source"), QString::fromLatin1(source)});
            return pactl({QStringLiteral("get-default-source")}) == std::string(source);
        });
        if (!isDefault) {
            whyNot = "the virtual source did not become the default input";
            return nullptr;
        }
        return server;
    }

    // A call app recording from the default input.
    static std::unique_ptr<ChildProcess> record() {
        return std::make_unique<ChildProcess>(
            std::vector<std::string>{"parecord", "--device=" + std::string(source), "/dev/null"});
    }

    void signalPulseServer(int number) const { daemons_.back()->signal(number); }
    void stop() { daemons_.clear(); }

private:
    PipeWire() = default;
    std::vector<std::unique_ptr<ChildProcess>> daemons_;
};

class RealMicrophone : public ::testing::Test {
protected:
    void SetUp() override {
        if (DesktopSession::shared() == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        makeQtApplication();
        std::string whyNot;
        server_ = PipeWire::start(whyNot);
        if (server_ == nullptr) {
            GTEST_SKIP() << whyNot;
        }
    }

    std::unique_ptr<PipeWire> server_;
};

TEST_F(RealMicrophone, TheBackendFollowsTheRecordingAndTheMuteAndSurvivesTheServer) {
    BufferLineSink out;
    PulseMicrophone mic(out);
    EXPECT_FALSE(mic.isInUse());
    EXPECT_EQ(mic.isMuted(), false);

    auto call = PipeWire::record();
    ASSERT_TRUE(waitUntil([&] { return mic.isInUse(); }));
    ASSERT_TRUE(mic.setMuted(true));
    EXPECT_EQ(sourceMute(), "yes");
    setSourceMute(false);
    EXPECT_TRUE(waitUntil([&] { return mic.isMuted() == false; })) << "a change made elsewhere";

    call.reset();
    EXPECT_TRUE(waitUntil([&] { return !mic.isInUse(); }));

    // The server hangs: the mute gives up, and the answers are "not
    // available" until it can be reached again.
    server_->signalPulseServer(SIGSTOP);
    EXPECT_FALSE(mic.setMuted(true));
    EXPECT_THAT(out.lines(), Contains("Microphone: lost the audio server (no answer in time)"));
    EXPECT_FALSE(mic.isMuted().has_value());
    server_->signalPulseServer(SIGCONT);

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
    setSourceMute(true);
    auto call = PipeWire::record();

    {
        // The switch is off: a recording is no call, and the shortcut leaves
        // the input alone. Two ticks pass before the program is asked.
        ChildProcess program(start, log);
        ASSERT_TRUE(program.waitForLine("GOT AX"));
        ASSERT_TRUE(program.waitForLine("GOT AX"));
        EXPECT_EQ(command("status"), "noMeeting");
        command("press");
        EXPECT_EQ(sourceMute(), "yes");
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
    EXPECT_TRUE(waitUntil([] { return sourceMute() == "no"; })) << "live while it is held";
    EXPECT_EQ(command("status"), "offMute");
    // Held longer than a tap.
    std::this_thread::sleep_for(300ms);
    command("release");
    EXPECT_TRUE(waitUntil([] { return sourceMute() == "yes"; }));

    call.reset();
    EXPECT_TRUE(waitUntil([] { return command("status") == "noMeeting"; }));
    EXPECT_EQ(sourceMute(), "no") << "the mute set during the call is lifted";
    program.signal(SIGTERM);
    ASSERT_TRUE(program.waitForLine("Goodbye cruel world!"));
    EXPECT_THAT(program.linesRead(), Contains("Microphone: connected to the audio server"));
}

} // namespace
} // namespace hg::test
