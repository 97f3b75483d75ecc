#pragma once

#include "shells/sim/SimDesktop.hpp"

#include <random>
#include <string>

namespace hg::sim {

// Writes a random but valid simulator script, one command at a time, looking
// at the desktop to stay clear of script errors: apps start and stop, meetings
// come and go, keys are pressed and tapped, trust changes, the menu and
// windows are used, stored values are spoiled now and then.
class SoakScript {
public:
    SoakScript(const SimDesktop& desktop, std::uint64_t seed) : desktop_(desktop), random_(seed) {}

    // The lines that prepare the desktop and launch the application.
    [[nodiscard]] std::vector<std::string> opening();
    // One command.
    [[nodiscard]] std::string nextCommand();
    // A wait: mostly short, so that taps and the quiet times are exercised,
    // sometimes long, so that a day passes in a few thousand steps.
    [[nodiscard]] std::string nextWait();

private:
    [[nodiscard]] int roll(int sides) {
        return std::uniform_int_distribution<int>(0, sides - 1)(random_);
    }
    template <typename T> const T& pick(const std::vector<T>& choices) {
        return choices[static_cast<std::size_t>(roll(static_cast<int>(choices.size())))];
    }

    std::string zoomCommand();
    std::string tupleCommand();
    std::string micCommand();
    std::string keyCommand();
    std::string menuCommand();
    std::string windowCommand();
    std::string systemCommand();

    const SimDesktop& desktop_;
    std::mt19937_64 random_;
};

} // namespace hg::sim
