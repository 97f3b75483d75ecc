#pragma once

#include "core/MeetingApp.hpp"

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace hg {

// A meeting application whose answers a test writes in advance, and which
// records what it was asked. Queued answers are used first, one per call;
// then the standing answer.
class ScriptedMeetingApp final : public MeetingApp {
public:
    explicit ScriptedMeetingApp(std::string name = "Zoom") : name_(std::move(name)) {}

    // --- script
    MeetingStatus status = MeetingStatus::noMeeting;     // standing fetchStatus answer
    std::deque<MeetingStatus> fetchAnswers;              // used before `status`
    MeetingStatus toggleAnswer = MeetingStatus::offMute; // standing toggleMute answer
    std::deque<MeetingStatus> toggleAnswers;             // used before `toggleAnswer`
    bool setupNeeded = false;
    bool late = false;              // what answeredLate() says
    std::function<void()> onFetch;  // runs inside fetchStatus, before it answers
    std::function<void()> onToggle; // runs inside toggleMute, before it answers

    // --- record
    int fetchCount = 0;
    int needsSetupCount = 0;
    std::vector<MeetingStatus> toggleFromStatuses; // one per toggleMute call

    [[nodiscard]] std::string name() const override { return name_; }

    MeetingStatus fetchStatus() override {
        ++fetchCount;
        if (onFetch) {
            onFetch();
        }
        return next(fetchAnswers, status);
    }

    [[nodiscard]] bool answeredLate() const override { return late; }

    MeetingStatus toggleMute(MeetingStatus fromStatus) override {
        toggleFromStatuses.push_back(fromStatus);
        if (onToggle) {
            onToggle();
        }
        return next(toggleAnswers, toggleAnswer);
    }

    bool needsSetup() override {
        ++needsSetupCount;
        return setupNeeded;
    }

    [[nodiscard]] int toggleCount() const { return static_cast<int>(toggleFromStatuses.size()); }

private:
    static MeetingStatus next(std::deque<MeetingStatus>& queue, MeetingStatus standing) {
        if (queue.empty()) {
            return standing;
        }
        const auto answer = queue.front();
        queue.pop_front();
        return answer;
    }

    std::string name_;
};

} // namespace hg
