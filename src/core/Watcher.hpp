#pragma once

#include "core/AnswerBackOff.hpp"
#include "core/MeetingApp.hpp"
#include "core/UserData.hpp"
#include "ports/Accessibility.hpp"
#include "ports/LineSink.hpp"
#include "ports/Timers.hpp"
#include "ports/UserDefaults.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace hg {

// Once a second: tests the Accessibility permission, asks the meeting
// applications for their state, picks the active one and one status for all
// of them, and hands it to the status store. Around that it reports
// permission changes, mutes on joining a meeting when the user wants it,
// forgets Zoom's cached mute item when the meeting situation changes, and
// reports each application that newly needs setup once. Main thread only.
class Watcher {
public:
    static constexpr Duration pollInterval = std::chrono::seconds(1);

    // `axChangedCallback` gets the new value each time the watcher changes
    // hasAXAccess; `setupCallback` gets an application that starts needing
    // setup. Everything referred to must outlive the watcher; the timer it
    // starts may outlive it and then does nothing.
    Watcher(UserData& userData, std::vector<std::shared_ptr<MeetingApp>> meetingApps,
            std::function<void(bool)> axChangedCallback,
            std::function<void(MeetingApp&)> setupCallback, Accessibility& accessibility,
            const UserDefaults& defaults, Timers& timers, LineSink& out);
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    // An application asked after all others, and only while the boolean
    // under `switchKey` is true in the user defaults (absent: false). While
    // the switch is off it is not polled at all, and it stops being the
    // active application at the next tick.
    void addOptionalApp(std::string switchKey, std::shared_ptr<MeetingApp> app);

    // Polls every second from now on; the first poll is one second away.
    void start();

    // One tick. Only the timer calls it in the running program.
    void poll();

    // A reading out of the tick, as soon as a source reports a change (a
    // recording started or ended): the same rules as a tick, mute on join
    // included, but without the permission test (taken as it stands) and
    // without setup reporting, which stay once a second.
    void readNow();

    // Whether a shown setupError that came from other apps than the one now
    // in a meeting counts as "no meeting" for mute on join (off at first:
    // then only notRunning and noMeeting do).
    void setJoinPastOtherSetupNeeds(bool on) { joinPastOtherSetupNeeds_ = on; }

    // "muteOnJoin_<name>" in the user defaults; an absent key means yes.
    [[nodiscard]] bool shouldMuteOnJoin(std::string_view appName) const;

    // Names reported through setupCallback that still need setup.
    [[nodiscard]] const std::set<std::string>& reportedSetupApps() const {
        return reportedSetupApps_;
    }

private:
    struct OptionalApp {
        std::string switchKey;
        std::shared_ptr<MeetingApp> app;
    };

    // The applications to ask this tick, in order.
    [[nodiscard]] std::vector<std::shared_ptr<MeetingApp>> polledApps() const;
    // The application's reading; none when it is left alone on this tick or
    // did not answer in time.
    std::optional<MeetingStatus> ask(MeetingApp& app);
    void setAXAccess(bool hasAXAccess);
    // Steps from resolving the status to the join rule and the late
    // permission test; `before` and `hadAXAccess` as they stood before.
    void read(const std::vector<std::shared_ptr<MeetingApp>>& apps, MeetingStatus before,
              bool hadAXAccess, bool trusted);
    // Whether passing from `before` to a live meeting of the active app is a
    // join; `setupBefore`: the apps that answered setupError last reading.
    [[nodiscard]] bool isJoin(MeetingStatus before, const std::set<std::string>& setupBefore) const;
    void reportSetupNeeds(const std::vector<std::shared_ptr<MeetingApp>>& apps);

    UserData& userData_;
    std::vector<std::shared_ptr<MeetingApp>> meetingApps_;
    std::vector<OptionalApp> optionalApps_;
    std::function<void(bool)> axChangedCallback_;
    std::function<void(MeetingApp&)> setupCallback_;
    std::set<std::string> reportedSetupApps_;
    AnswerBackOff backOff_;
    // The apps that answered setupError in the latest reading.
    std::set<std::string> setupAnswers_;
    bool joinPastOtherSetupNeeds_ = false;

    Accessibility& accessibility_;
    const UserDefaults& defaults_;
    Timers& timers_;
    LineSink& out_;
    // The timer holds only a weak reference to this, so that a tick after the
    // watcher is gone does nothing.
    std::shared_ptr<const bool> lifetime_ = std::make_shared<const bool>(true);
};

} // namespace hg
