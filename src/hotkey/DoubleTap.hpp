#pragma once

#include "ports/Clock.hpp"
#include "ports/LineSink.hpp"

#include <chrono>

namespace hg {

// Recognises a double tap of the shortcut from its presses and releases: each
// step (press to release, release to press, press to release) quicker than
// tapInterval. Sequences the monitor should never produce (two presses or two
// releases in a row) print a line and fall back to nope.
class DoubleTap {
public:
    enum class State { firstDown, firstUp, secondDown, nope, doubleTapped };

    // Strictly less than this between steps; exactly 0.2 s breaks the sequence.
    static constexpr Duration tapInterval = std::chrono::milliseconds(200);

    DoubleTap(const Clock& clock, LineSink& out);

    [[nodiscard]] State state() const { return state_; }
    // When firstDown, firstUp or secondDown began; meaningless in the others.
    [[nodiscard]] Instant since() const { return since_; }

    void down();
    void up();
    // Back to nope, silently; the owner calls it once it has seen doubleTapped.
    void reset();

private:
    void enter(State state, Instant at = {});

    const Clock& clock_;
    LineSink& out_;
    State state_ = State::nope;
    Instant since_{};
};

} // namespace hg
