#pragma once

#include "core/MeetingStatus.hpp"
#include "ports/SetupView.hpp"

#include <functional>
#include <string>

namespace hg {

// A supported meeting application. Failures travel as MeetingStatus values
// (setupError, error); nothing here throws. Main thread only.
class MeetingApp {
public:
    virtual ~MeetingApp() = default;

    // "Zoom", "Tuple". Two adapters are the same application when names match.
    [[nodiscard]] virtual std::string name() const = 0;

    // Reads the current state; may block while the application answers.
    virtual MeetingStatus fetchStatus() = 0;

    // Whether the last fetchStatus() got no answer in time from the
    // application (stopped or busy): its result is then no reading at all.
    [[nodiscard]] virtual bool answeredLate() const { return false; }

    // Flips the microphone. offMute: done (either direction); error: failed;
    // anything else: nothing was done, record that status instead.
    virtual MeetingStatus toggleMute(MeetingStatus fromStatus) = 0;

    // Whether the user must act before the adapter can work.
    virtual bool needsSetup() = 0;

    // The content of the setup window, made anew on each call.
    [[nodiscard]] virtual SetupView makeSetupView(std::function<void()> closeAction) const {
        return SetupView{SetupView::Kind::empty, std::move(closeAction)};
    }

    [[nodiscard]] virtual std::string setupWindowTitle() const { return name() + " Setup"; }
};

} // namespace hg
