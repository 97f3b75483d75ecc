#include "hotkey/DoubleTap.hpp"

namespace hg {

DoubleTap::DoubleTap(const Clock& clock, LineSink& out) : clock_(clock), out_(out) {}

void DoubleTap::enter(State state, Instant at) {
    state_ = state;
    since_ = at;
}

void DoubleTap::down() {
    const Instant now = clock_.now();
    switch (state_) {
    case State::nope:
        enter(State::firstDown, now);
        break;
    case State::firstDown:
        out_.line("ERROR, First Down Down");
        enter(State::nope);
        break;
    case State::firstUp:
        enter(now - since_ < tapInterval ? State::secondDown : State::firstDown, now);
        break;
    case State::secondDown:
        out_.line("ERROR, Second Down Down");
        enter(State::nope);
        break;
    case State::doubleTapped:
        out_.line("DOUBLE TAPPED DOWN???");
        enter(State::firstDown, now);
        break;
    }
}

void DoubleTap::up() {
    const Instant now = clock_.now();
    switch (state_) {
    case State::nope:
        out_.line("ERROR NOPE UP");
        break;
    case State::firstDown:
        if (now - since_ < tapInterval) {
            enter(State::firstUp, now);
        } else {
            enter(State::nope);
        }
        break;
    case State::firstUp:
        out_.line("ERROR, First Up Up");
        enter(State::nope);
        break;
    case State::secondDown:
        enter(now - since_ < tapInterval ? State::doubleTapped : State::nope);
        break;
    case State::doubleTapped:
        out_.line("DOUBLE TAPPED UP ERR");
        enter(State::nope);
        break;
    }
}

void DoubleTap::reset() {
    enter(State::nope);
}

} // namespace hg
