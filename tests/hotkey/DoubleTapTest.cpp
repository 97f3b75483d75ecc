#include "hotkey/DoubleTap.hpp"

#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeClock.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace hg {
namespace {

using State = DoubleTap::State;
using std::chrono::milliseconds;

// One press or release, `after` milliseconds after the previous one.
struct Step {
    char op; // 'd' down, 'u' up
    int after;
};

struct Case {
    const char* name;
    std::vector<Step> steps;
    State expected;
};

TEST(DoubleTap, StepsMustEachBeQuickerThanTheTapInterval) {
    const Case cases[] = {
        {"double tap", {{'d', 0}, {'u', 50}, {'d', 100}, {'u', 100}}, State::doubleTapped},
        {"all steps at 199 ms",
         {{'d', 0}, {'u', 199}, {'d', 199}, {'u', 199}},
         State::doubleTapped},
        {"first press 199 ms", {{'d', 0}, {'u', 199}}, State::firstUp},
        {"first press exactly 200 ms", {{'d', 0}, {'u', 200}}, State::nope},
        {"held 300 ms", {{'d', 0}, {'u', 300}}, State::nope},
        {"held, then a quick press", {{'d', 0}, {'u', 300}, {'d', 50}}, State::firstDown},
        {"held, press, quick release",
         {{'d', 0}, {'u', 300}, {'d', 50}, {'u', 50}},
         State::firstUp},
        {"gap 199 ms", {{'d', 0}, {'u', 50}, {'d', 199}}, State::secondDown},
        {"gap exactly 200 ms", {{'d', 0}, {'u', 50}, {'d', 200}}, State::firstDown},
        {"gap 250 ms", {{'d', 0}, {'u', 50}, {'d', 250}}, State::firstDown},
        {"gap too long, then a new quick tap",
         {{'d', 0}, {'u', 50}, {'d', 250}, {'u', 50}},
         State::firstUp},
        {"second press exactly 200 ms", {{'d', 0}, {'u', 50}, {'d', 50}, {'u', 200}}, State::nope},
        {"second press 199 ms", {{'d', 0}, {'u', 50}, {'d', 50}, {'u', 199}}, State::doubleTapped},
    };
    for (const auto& c : cases) {
        FakeClock clock;
        BufferLineSink out;
        DoubleTap tap(clock, out);
        for (const auto& step : c.steps) {
            clock.advance(milliseconds(step.after));
            step.op == 'd' ? tap.down() : tap.up();
        }
        EXPECT_EQ(tap.state(), c.expected) << c.name;
        EXPECT_TRUE(out.lines().empty()) << c.name;
    }
}

TEST(DoubleTap, IrregularSequencesPrintAndFallBack) {
    struct Row {
        const char* sequence; // from nope, no time passing
        State expected;
        std::vector<std::string> lines;
    };
    const Row rows[] = {
        {"u", State::nope, {"ERROR NOPE UP"}},
        {"dd", State::nope, {"ERROR, First Down Down"}},
        {"duu", State::nope, {"ERROR, First Up Up"}},
        {"dudd", State::nope, {"ERROR, Second Down Down"}},
        {"dudud", State::firstDown, {"DOUBLE TAPPED DOWN???"}},
        {"duduu", State::nope, {"DOUBLE TAPPED UP ERR"}},
        {"uu", State::nope, {"ERROR NOPE UP", "ERROR NOPE UP"}},
    };
    for (const auto& row : rows) {
        FakeClock clock;
        BufferLineSink out;
        DoubleTap tap(clock, out);
        for (const char* op = row.sequence; *op != '\0'; ++op) {
            *op == 'd' ? tap.down() : tap.up();
        }
        EXPECT_EQ(tap.state(), row.expected) << row.sequence;
        EXPECT_EQ(out.lines(), row.lines) << row.sequence;
    }
}

TEST(DoubleTap, ResetReturnsToNopeSilently) {
    FakeClock clock;
    BufferLineSink out;
    DoubleTap tap(clock, out);
    tap.down();
    tap.up();
    tap.down();
    tap.up();
    ASSERT_EQ(tap.state(), State::doubleTapped);
    tap.reset();
    EXPECT_EQ(tap.state(), State::nope);
    tap.down();
    EXPECT_EQ(tap.state(), State::firstDown);
    EXPECT_TRUE(out.lines().empty());
}

// A clock that moves 150 ms every time it is read: a second read within one
// call would see a different "now".
class SteppingClock final : public Clock {
public:
    [[nodiscard]] Instant now() const override {
        ++reads;
        current += milliseconds(150);
        return current;
    }
    mutable int reads = 0;
    mutable Instant current{};
};

TEST(DoubleTap, ReadsTheClockOncePerCall) {
    SteppingClock clock;
    BufferLineSink out;
    DoubleTap tap(clock, out);
    tap.down();
    tap.up();
    tap.down();
    tap.up();
    EXPECT_EQ(clock.reads, 4);
    EXPECT_EQ(tap.state(), State::doubleTapped);
}

} // namespace
} // namespace hg
