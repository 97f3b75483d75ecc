#include "PipeWireSession.hpp"

#include <QProcess>
#include <QStandardPaths>
#include <cstdlib>

namespace hg::test {

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

std::unique_ptr<PipeWireSession> PipeWireSession::start(std::string& whyNot) {
    for (const char* program : {"pipewire", "wireplumber", "pipewire-pulse", "pactl", "parecord"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty()) {
            whyNot = std::string(program) + " is not installed (scripts/install-deps installs it)";
            return nullptr;
        }
    }
    std::unique_ptr<PipeWireSession> server(new PipeWireSession());
    const std::string logs = DesktopSession::shared()->scratchDir() + "/";
    ::unsetenv("PULSE_SERVER");
    for (const char* daemon : {"pipewire", "wireplumber", "pipewire-pulse"}) {
        server->daemons_.push_back(std::make_unique<ChildProcess>(std::vector<std::string>{daemon},
                                                                  logs + daemon + ".log"));
    }
    if (!waitUntil([] { return pactl({QStringLiteral("info")}).has_value(); })) {
        whyNot = "PipeWire's PulseAudio server did not answer (see " + logs + "*.log)";
        return nullptr;
    }
    // On a busy machine the server may answer before it can load modules:
    // the source is loaded again until it is there.
    const auto listed = [](const char* what) {
        return pactl({QStringLiteral("list"), QStringLiteral("short"), QString::fromLatin1(what)})
            .value_or("(unreadable)");
    };
    const bool isDefault = waitUntil([&] {
        if (listed("modules").find("module-null-sink") == std::string::npos) {
            pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                   QStringLiteral("media.class=Audio/Source/Virtual"),
                   QStringLiteral("sink_name=") + QString::fromLatin1(source),
                   QStringLiteral("channel_map=mono")});
        }
        pactl({QStringLiteral("set-default-source"), QString::fromLatin1(source)});
        return pactl({QStringLiteral("get-default-source")}) == std::string(source);
    });
    if (!isDefault) {
        whyNot =
            "the virtual source did not become the default input; sources: " + listed("sources") +
            "; logs: " + logs + "*.log";
        return nullptr;
    }
    // Live, whatever wireplumber remembers of an earlier run.
    setSourceMute(false);
    return server;
}

void PipeWireSession::removeSource() {
    pactl({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")});
}

std::unique_ptr<ChildProcess> PipeWireSession::record() {
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"parecord", "--device=" + std::string(source), "/dev/null"});
}

std::string PipeWireSession::sourceMute() {
    const auto answer = pactl({QStringLiteral("get-source-mute"), QString::fromLatin1(source)});
    return answer ? answer->substr(answer->find(' ') + 1) : "unreadable";
}

void PipeWireSession::setSourceMute(bool muted) {
    pactl({QStringLiteral("set-source-mute"), QString::fromLatin1(source),
           muted ? QStringLiteral("1") : QStringLiteral("0")});
}

} // namespace hg::test
