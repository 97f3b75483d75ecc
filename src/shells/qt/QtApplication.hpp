#pragma once

#include "ports/Application.hpp"

namespace hg {

// The running QApplication. Activation on a desktop means giving the next
// window that is brought forward the keyboard focus; QtWindows asks for it
// with takeActivation(). Termination quits the event loop; whoever owns the
// application delegate runs its will-terminate handling from
// QCoreApplication::aboutToQuit, so every way of quitting passes there.
class QtApplication final : public Application {
public:
    void activate() override;
    void terminate() override;

    // Whether an activation is waiting for a window; clears it.
    bool takeActivation();

private:
    bool activationPending_ = false;
};

} // namespace hg
