#pragma once

#include "ports/Clock.hpp"

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

namespace hg {

// Which meeting applications the watcher leaves alone for a while because
// they answered late: an application that did not answer in time, or took
// longer than slowAnswer, is not asked for the next firstPause ticks, then
// for twice as many after each further late answer, up to maxPause; one
// answer in time ends that. Each reading of a stopped or busy application
// holds the main thread, so this keeps the menu and the scripting interface
// answering (from the last reading) while the application does not.
class AnswerBackOff {
public:
    static constexpr Duration slowAnswer = std::chrono::milliseconds(250);
    static constexpr int firstPause = 2;
    static constexpr int maxPause = 16;

    // Called once at the start of every tick.
    void nextTick() { ++tick_; }

    // Whether the application named `name` may be asked on this tick.
    [[nodiscard]] bool mayAsk(const std::string& name) const;

    // After asking it: `late` when it answered late. The number of ticks on
    // which it will not be asked now; 0 after an answer in time.
    int record(const std::string& name, bool late);

private:
    struct Pause {
        int ticks = 0;              // the length of the current pause
        std::uint64_t resumeAt = 0; // the first tick on which it is asked again
    };
    std::uint64_t tick_ = 0;
    std::map<std::string, Pause, std::less<>> pauses_;
};

} // namespace hg
