#pragma once

#include "DesktopSession.hpp"

#include <QStringList>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The audio server of a private desktop: PipeWire, wireplumber and
// pipewire-pulse on its runtime folder and bus, with a virtual source as the
// default input. Shared by the microphone tests and benchmark.
namespace hg::test {

// Runs a command to its end: its standard output, trimmed, or none when it
// failed.
std::optional<std::string> run(const QString& program, const QStringList& arguments);

std::optional<std::string> pactl(const QStringList& arguments);

class PipeWireSession {
public:
    // The default input's name.
    static constexpr const char* source = "hg_fake_mic";

    // Needs the private desktop (DesktopSession::shared()). Null, with the
    // reason, when the server does not come up. The daemons end with it.
    static std::unique_ptr<PipeWireSession> start(std::string& whyNot);

    // A call app recording from `from` (the default input's name at first),
    // until it is destroyed.
    static std::unique_ptr<ChildProcess> record(const char* from = source);

    // "yes" or "no", as pactl reads a source's mute (the default input's).
    static std::string mute(const char* name);
    static std::string sourceMute() { return mute(source); }
    static void setSourceMute(bool muted);
    // Another virtual source, as a headset that is plugged in; true once the
    // server lists it.
    static bool addSource(const char* name);
    static void setDefaultSource(const char* name);
    // Whether every recording stream is silenced, by its own mute or its
    // input's (true when nothing records).
    static bool recordingsSilent();
    // Unplugs the virtual source.
    static void removeSource();

    // To the PulseAudio server (pipewire-pulse).
    void signalPulseServer(int number) const { daemons_.back()->signal(number); }
    void stop() { daemons_.clear(); }
    // Ends the PulseAudio server and starts it again with the virtual source
    // as the default input; false, with the reason, when it does not answer.
    bool restartPulseServer(std::string& whyNot);

private:
    PipeWireSession() = default;
    static std::unique_ptr<ChildProcess> startDaemon(const char* name);
    bool startPulseServer(std::string& whyNot);
    std::vector<std::unique_ptr<ChildProcess>> daemons_;
};

} // namespace hg::test
