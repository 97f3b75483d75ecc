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

    // A call app recording from the default input, until it is destroyed.
    static std::unique_ptr<ChildProcess> record();

    // "yes" or "no", as pactl reads the default input's mute.
    static std::string sourceMute();
    static void setSourceMute(bool muted);
    // Unplugs the virtual source.
    static void removeSource();

    // To the PulseAudio server (pipewire-pulse).
    void signalPulseServer(int number) const { daemons_.back()->signal(number); }
    void stop() { daemons_.clear(); }

private:
    PipeWireSession() = default;
    std::vector<std::unique_ptr<ChildProcess>> daemons_;
};

} // namespace hg::test
