#include "PipeWireSession.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <cstdlib>
#include <sstream>

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
    ::unsetenv("PULSE_SERVER");
    for (const char* daemon : {"pipewire", "wireplumber"}) {
        server->daemons_.push_back(startDaemon(daemon));
    }
    if (!server->startPulseServer(whyNot)) {
        return nullptr;
    }
    return server;
}

std::unique_ptr<ChildProcess> PipeWireSession::startDaemon(const char* name) {
    return std::make_unique<ChildProcess>(std::vector<std::string>{name},
                                          DesktopSession::shared()->scratchDir() + "/" + name +
                                              ".log");
}

bool PipeWireSession::restartPulseServer(std::string& whyNot) {
    daemons_.back()->stop();
    daemons_.pop_back();
    return startPulseServer(whyNot);
}

bool PipeWireSession::startPulseServer(std::string& whyNot) {
    const std::string logs = DesktopSession::shared()->scratchDir() + "/";
    daemons_.push_back(startDaemon("pipewire-pulse"));
    // One that gives up at once (the last one's socket not yet released, on
    // a busy machine) is started again.
    const bool answers = waitUntil([this] {
        if (pactl({QStringLiteral("info")}).has_value()) {
            return true;
        }
        if (daemons_.back()->waitForExit(1ms)) {
            daemons_.back() = startDaemon("pipewire-pulse");
        }
        return false;
    });
    if (!answers) {
        whyNot = "PipeWire's PulseAudio server did not answer (see " + logs + "*.log)";
        return false;
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
        return false;
    }
    // Live, whatever wireplumber remembers of an earlier run.
    setSourceMute(false);
    return true;
}

bool PipeWireSession::addSource(const char* name) {
    pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
           QStringLiteral("media.class=Audio/Source/Virtual"),
           QStringLiteral("sink_name=") + QString::fromLatin1(name),
           QStringLiteral("channel_map=mono")});
    return waitUntil([name] { return mute(name) == "no" || mute(name) == "yes"; });
}

bool PipeWireSession::recordingsSilent() {
    const auto list = [](const char* what) {
        return QJsonDocument::fromJson(
                   QByteArray::fromStdString(
                       pactl({QStringLiteral("--format=json"), QStringLiteral("list"),
                              QString::fromLatin1(what)})
                           .value_or("[]")))
            .array();
    };
    // Inputs first: a stream that moves meanwhile is judged by how its new
    // input was before, so a mute that comes late is never missed.
    const QJsonArray sources = list("sources");
    const QJsonArray streams = list("source-outputs");
    for (const auto stream : streams) {
        if (stream[QStringLiteral("mute")].toBool()) {
            continue;
        }
        for (const auto source : sources) {
            if (source[QStringLiteral("index")] == stream[QStringLiteral("source")] &&
                !source[QStringLiteral("mute")].toBool()) {
                return false;
            }
        }
    }
    return true;
}

void PipeWireSession::setDefaultSource(const char* name) {
    pactl({QStringLiteral("set-default-source"), QString::fromLatin1(name)});
}

void PipeWireSession::removeSource() {
    pactl({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")});
}

std::unique_ptr<ChildProcess> PipeWireSession::record(const char* from) {
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"parecord", "--device=" + std::string(from), "/dev/null"});
}

std::string PipeWireSession::mute(const char* name) {
    const auto answer = pactl({QStringLiteral("get-source-mute"), QString::fromLatin1(name)});
    return answer ? answer->substr(answer->find(' ') + 1) : "unreadable";
}

void PipeWireSession::setSourceMute(bool muted) {
    pactl({QStringLiteral("set-source-mute"), QString::fromLatin1(source),
           muted ? QStringLiteral("1") : QStringLiteral("0")});
}

} // namespace hg::test
