#include "apps/InputMuteKeeper.hpp"

#include <algorithm>
#include <sstream>

namespace hg {

namespace {

constexpr Duration readingInterval = std::chrono::seconds(1);

} // namespace

InputMuteKeeper::InputMuteKeeper(Microphone& microphone, UserDefaults& defaults, Clock& clock,
                                 Timers& timers, LineSink& out, Options options)
    : microphone_(microphone), defaults_(defaults), clock_(clock), timers_(timers), out_(out),
      options_(std::move(options)) {}

InputMuteKeeper::~InputMuteKeeper() {
    if (timer_ != 0) {
        timers_.cancel(timer_);
    }
}

std::set<std::string> InputMuteKeeper::book() const {
    std::set<std::string> names;
    std::istringstream lines(defaults_.stringForKey(options_.bookKey).value_or(""));
    for (std::string name; std::getline(lines, name);) {
        if (!name.empty()) {
            names.insert(name);
        }
    }
    return names;
}

void InputMuteKeeper::write(const std::set<std::string>& book) {
    if (book.empty()) {
        defaults_.removeObject(options_.bookKey);
        return;
    }
    std::string text;
    for (const auto& name : book) {
        text += name + "\n";
    }
    defaults_.setObject(options_.bookKey, DefaultsValue{text});
}

bool InputMuteKeeper::holds(const std::string& input) const {
    return book().contains(input);
}

void InputMuteKeeper::remember(const std::string& input) {
    if (input.empty() || input.find('\n') != std::string::npos) {
        return;
    }
    auto names = book();
    if (names.insert(input).second) {
        write(names);
    }
    idleSince_.erase(input);
    failureSaid_.erase(input);
    if (timer_ == 0) {
        wakeIn(readingInterval);
    }
}

void InputMuteKeeper::forget(const std::string& input) {
    auto names = book();
    if (names.erase(input) != 0) {
        write(names);
    }
    idleSince_.erase(input);
    failureSaid_.erase(input);
}

bool InputMuteKeeper::lift(const std::string& input) {
    const bool firstTry = failureSaid_.insert(input).second;
    if (firstTry) {
        out_.line("Microphone: nothing records any more, lifting the mute set during the call");
    }
    if (!microphone_.setMuted(input, false)) {
        if (firstTry) {
            out_.line("Microphone: could not unmute the input");
        }
        return false;
    }
    forget(input);
    return true;
}

void InputMuteKeeper::followMovedCalls() {
    auto now = microphone_.recordedInputs();
    if (!now) {
        return;
    }
    const auto was = [this](const std::string& input) {
        return std::find(recorded_.begin(), recorded_.end(), input) != recorded_.end();
    };
    const auto names = book();
    const bool bookedLeft = std::any_of(names.begin(), names.end(), [&](const std::string& input) {
        return was(input) && std::find(now->begin(), now->end(), input) == now->end();
    });
    if (bookedLeft) {
        for (const auto& input : *now) {
            if (was(input) || names.contains(input) || microphone_.isMuted(input) != false) {
                continue;
            }
            out_.line("Microphone: the call moved to " + input + ", muting it too");
            if (microphone_.setMuted(input, true)) {
                remember(input);
            } else {
                out_.line("Microphone: could not mute the input");
            }
        }
    }
    recorded_ = std::move(*now);
}

void InputMuteKeeper::settle() {
    if (!book().empty()) {
        followMovedCalls();
    } else {
        recorded_.clear();
    }
    std::optional<Duration> graceLeft;
    for (const auto& input : book()) {
        const auto recording = microphone_.isRecording(input);
        if (!recording || *recording) {
            // Unknown is not idle: the mute stays until the input is seen.
            idleSince_.erase(input);
            continue;
        }
        if (microphone_.isMuted(input) == false) {
            // Someone lifted it already.
            forget(input);
            continue;
        }
        const Instant now = clock_.now();
        const Instant since = idleSince_.try_emplace(input, now).first->second;
        const Duration left = options_.grace - (now - since);
        if (left <= Duration::zero()) {
            lift(input);
        } else {
            graceLeft = std::min(left, graceLeft.value_or(left));
        }
    }
    if (book().empty()) {
        if (timer_ != 0) {
            timers_.cancel(timer_);
            timer_ = 0;
        }
        return;
    }
    wakeIn(graceLeft.value_or(readingInterval));
}

void InputMuteKeeper::wakeIn(Duration after) {
    if (timer_ != 0 && after == timerInterval_) {
        return;
    }
    if (timer_ != 0) {
        timers_.cancel(timer_);
    }
    timerInterval_ = after;
    timer_ = timers_.scheduleRepeating(after, [this] { wake(); });
}

void InputMuteKeeper::wake() {
    // While the source is on, each tick's reading settles the book; the
    // keeper's own reading is only needed while a grace period runs (a
    // timer may fire a little early: settle() then waits for the rest).
    if (defaults_.boolForKey(options_.switchKey) && idleSince_.empty()) {
        return;
    }
    settle();
}

void InputMuteKeeper::start() {
    const auto names = book();
    if (names.empty()) {
        return;
    }
    for (const auto& input : names) {
        out_.line("Microphone: lifting the mute an earlier run left on " + input +
                  " once nothing records from it");
    }
    settle();
}

void InputMuteKeeper::quit() {
    for (const auto& input : book()) {
        if (microphone_.isRecording(input) == false) {
            lift(input);
        } else {
            out_.line("Microphone: " + input +
                      " stays muted while it records; the next start lifts the mute once the "
                      "recording ends");
        }
    }
}

} // namespace hg
