#pragma once

#include "ports/Clock.hpp"
#include "ports/LineSink.hpp"
#include "ports/Microphone.hpp"
#include "ports/Timers.hpp"
#include "ports/UserDefaults.hpp"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace hg {

// The book of the mutes the program put on audio inputs, kept in the user
// defaults by the input's name so that it outlives a quit, a crash or a
// logout. A mute in the book is lifted once no recording has used its input
// for the grace period (a call app that reopens its stream, as on a device
// switch, stays the same call), whatever happened in between: the default
// input changing, the source being switched off, the program restarting. An
// input that cannot be read (the audio service is out of reach, the device
// unplugged) is "unknown" and keeps its mute and its entry; a mute someone
// else lifted leaves the book. Main thread only.
class InputMuteKeeper {
public:
    struct Options {
        // The user-defaults key of the book: the names, one a line.
        std::string bookKey = "microphoneMutedInputs";
        // While this switch is on, the microphone source is polled every
        // tick and settles the book itself; while it is off the keeper
        // reads on its own, once a second, as long as the book holds a mute.
        std::string switchKey;
        // How long an input must go without a recording before its mute is
        // lifted. Zero lifts at the first reading that finds it idle.
        Duration grace{0};
    };

    InputMuteKeeper(Microphone& microphone, UserDefaults& defaults, Clock& clock, Timers& timers,
                    LineSink& out, Options options);
    ~InputMuteKeeper();
    InputMuteKeeper(const InputMuteKeeper&) = delete;
    InputMuteKeeper& operator=(const InputMuteKeeper&) = delete;

    // The program muted `input`, or lifted its mute, or saw it unmuted by
    // someone else: the book follows.
    void remember(const std::string& input);
    void forget(const std::string& input);
    [[nodiscard]] bool holds(const std::string& input) const;

    // Reads every input in the book and lifts the mutes whose input has
    // been idle for the grace period. A call that leaves an input in the book
    // for another, live one is followed, and that input muted and booked
    // too: a new default input, when the old one is in the book (call apps
    // that follow the default move their stream over), and an input that
    // starts being recorded in the reading in which one in the book stops
    // (the audio server may move a stream before it announces the default).
    void settle();

    // At start: mutes left by an earlier run are looked after from now on.
    void start();

    // Before the program ends: lifts at once each mute whose input nothing
    // records from; one still recorded (or unknown) stays, and stays in the
    // book, for the next start to lift once the recording ends.
    void quit();

private:
    [[nodiscard]] std::set<std::string> book() const;
    void write(const std::set<std::string>& book);
    // Mutes the input a muted call moves to.
    void followMovedCalls(const std::string& defaultInput);
    // Mutes `input` as well, saying `why`, and books it.
    void muteToo(const std::string& input, const std::string& why);
    // Lifts the mute of `input`; true when it is off the book.
    bool lift(const std::string& input);
    // Keeps the keeper's own reading going while the book holds a mute: in
    // `after`, then once a second.
    void wakeIn(Duration after);
    void wake();

    Microphone& microphone_;
    UserDefaults& defaults_;
    Clock& clock_;
    Timers& timers_;
    LineSink& out_;
    Options options_;
    // When each input in the book was first seen without a recording.
    std::map<std::string, Instant> idleSince_;
    std::set<std::string> failureSaid_;
    // The inputs recorded, and the default input, at the last reading.
    std::vector<std::string> recorded_;
    std::string lastDefault_;
    TimerId timer_ = 0;
    Duration timerInterval_{0};
};

} // namespace hg
