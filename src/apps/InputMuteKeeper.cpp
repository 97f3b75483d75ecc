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

void InputMuteKeeper::muteToo(const std::string& input, const std::string& why) {
    out_.line("Microphone: " + why + ", muting " + input + " too");
    if (microphone_.setMuted(input, true)) {
        remember(input);
    } else {
        out_.line("Microphone: could not mute the input");
    }
}

void InputMuteKeeper::followMovedCalls(const std::string& defaultInput) {
    const auto names = book();
    if (auto now = microphone_.recordedInputs()) {
        const auto was = [this](const std::string& input) {
            return std::find(recorded_.begin(), recorded_.end(), input) != recorded_.end();
        };
        const bool bookedLeft =
            std::any_of(names.begin(), names.end(), [&](const std::string& input) {
                return was(input) && std::find(now->begin(), now->end(), input) == now->end();
            });
        if (bookedLeft) {
            for (const auto& input : *now) {
                if (!was(input) && !names.contains(input) && microphone_.isMuted(input) == false) {
                    muteToo(input, "the call moved to " + input);
                }
            }
        }
        recorded_ = std::move(*now);
    }
    // Call apps that follow the default input move their stream over when it
    // changes: the mute goes first.
    if (!lastDefault_.empty() && !defaultInput.empty() && defaultInput != lastDefault_ &&
        names.contains(lastDefault_) && microphone_.isMuted(defaultInput) == false) {
        muteToo(defaultInput, "the default input changed during a muted call");
    }
}

void InputMuteKeeper::settle() {
    const std::string defaultInput = microphone_.defaultInput();
    if (!book().empty()) {
        followMovedCalls(defaultInput);
    } else {
        recorded_.clear();
    }
    if (!defaultInput.empty()) {
        lastDefault_ = defaultInput;
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
