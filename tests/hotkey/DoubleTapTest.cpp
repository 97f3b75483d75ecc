#include "hotkey/DoubleTap.hpp"

#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeClock.hpp"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace hg {
namespace {

using State = DoubleTap::State;

// Steps are "d<ms>" (press), "u<ms>" (release) or "r" (reset), each <ms>
// milliseconds after the one before.
TEST(DoubleTap, StepsMustEachBeQuickerThanTheTapInterval) {
    struct Case {
        const char* steps;
        State expected;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"d0 u199 d199 u199", State::doubleTapped, {}},
        {"d0 u199", State::firstUp, {}},
        {"d0 u200", State::nope, {}},
        {"d0 u300 d50 u50", State::firstUp, {}},
        {"d0 u50 d199", State::secondDown, {}},
        {"d0 u50 d200", State::firstDown, {}},
        {"d0 u50 d250 u50", State::firstUp, {}},
        {"d0 u50 d50 u200", State::nope, {}},
        {"d0 u50 d50 u199", State::doubleTapped, {}},
        {"d0 u0 d0 u0 r d0", State::firstDown, {}},
        // Sequences the monitor never produces print and fall back.
        {"u0", State::nope, {"ERROR NOPE UP"}},
        {"u0 u0", State::nope, {"ERROR NOPE UP", "ERROR NOPE UP"}},
        {"d0 d0", State::nope, {"ERROR, First Down Down"}},
        {"d0 u0 u0", State::nope, {"ERROR, First Up Up"}},
        {"d0 u0 d0 d0", State::nope, {"ERROR, Second Down Down"}},
        {"d0 u0 d0 u0 d0", State::firstDown, {"DOUBLE TAPPED DOWN???"}},
        {"d0 u0 d0 u0 u0", State::nope, {"DOUBLE TAPPED UP ERR"}},
    };
    for (const auto& c : cases) {
        FakeClock clock;
        BufferLineSink out;
        DoubleTap tap(clock, out);
        std::istringstream steps(c.steps);
        for (std::string step; steps >> step;) {
            if (step == "r") {
                tap.reset();
                continue;
            }
            clock.advance(std::chrono::milliseconds(std::stoi(step.substr(1))));
            step[0] == 'd' ? tap.down() : tap.up();
        }
        EXPECT_EQ(tap.state(), c.expected) << c.steps;
        EXPECT_EQ(out.lines(), c.lines) << c.steps;
    }
}

} // namespace
} // namespace hg
