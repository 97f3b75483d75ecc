#include "core/Watcher.hpp"

#include "apps/ZoomMeetingApp.hpp"

#include <algorithm>
#include <utility>

namespace hg {

namespace {

// Zoom's cached mute item belongs to the meeting it was found in; when the
// situation changes the next toggle must look it up again.
void forgetMuteButton(const std::shared_ptr<MeetingApp>& app) {
    if (auto* zoom = dynamic_cast<ZoomMeetingApp*>(app.get())) {
        zoom->setMuteButton(nullptr);
    }
}

bool isZoom(const std::shared_ptr<MeetingApp>& app) {
    return dynamic_cast<const ZoomMeetingApp*>(app.get()) != nullptr;
}

} // namespace

Watcher::Watcher(UserData& userData, std::vector<std::shared_ptr<MeetingApp>> meetingApps,
                 std::function<void(bool)> axChangedCallback,
                 std::function<void(MeetingApp&)> setupCallback, Accessibility& accessibility,
                 const UserDefaults& defaults, Timers& timers, LineSink& out)
    : userData_(userData), meetingApps_(std::move(meetingApps)),
      axChangedCallback_(std::move(axChangedCallback)), setupCallback_(std::move(setupCallback)),
      accessibility_(accessibility), defaults_(defaults), timers_(timers), out_(out) {}

void Watcher::start() {
    out_.line("Starting watcher");
    timers_.scheduleRepeating(pollInterval, [this, alive = std::weak_ptr<const bool>(lifetime_)] {
        if (alive.lock()) {
            poll();
        }
    });
}

void Watcher::addOptionalApp(std::string switchKey, std::shared_ptr<MeetingApp> app) {
    optionalApps_.push_back(OptionalApp{std::move(switchKey), std::move(app)});
}

std::vector<std::shared_ptr<MeetingApp>> Watcher::polledApps() const {
    auto apps = meetingApps_;
    for (const auto& optional : optionalApps_) {
        if (defaults_.boolForKey(optional.switchKey)) {
            apps.push_back(optional.app);
        }
    }
    return apps;
}

bool Watcher::shouldMuteOnJoin(std::string_view appName) const {
    const std::string key = "muteOnJoin_" + std::string(appName);
    if (!defaults_.hasObject(key)) {
        return true;
    }
    return defaults_.boolForKey(key);
}

std::optional<MeetingStatus> Watcher::ask(MeetingApp& app) {
    const std::string name = app.name();
    if (!backOff_.mayAsk(name)) {
        return std::nullopt;
    }
    const Instant start = userData_.clock().now();
    const MeetingStatus answer = app.fetchStatus();
    const bool late = app.answeredLate();
    const bool slow = userData_.clock().now() - start > AnswerBackOff::slowAnswer;
    if (const int pause = backOff_.record(name, late || slow); pause > 0) {
        out_.line(name + " answered late; asking again in " + std::to_string(pause) + " s");
    }
    if (late) {
        return std::nullopt;
    }
    return answer;
}

void Watcher::setAXAccess(bool hasAXAccess) {
    userData_.setHasAXAccess(hasAXAccess);
    userData_.recordHistory();
    if (axChangedCallback_) {
        axChangedCallback_(hasAXAccess);
    }
}

void Watcher::poll() {
    const MeetingStatus before = userData_.truestStatus();
    const bool hadAXAccess = userData_.hasAXAccess();

    const bool trusted = accessibility_.isProcessTrusted(false);
    out_.line(std::string("GOT AX:  ") + (trusted ? "true" : "false"));

    if (hadAXAccess && !trusted) {
        out_.line("SET FALSE EARLY");
        setAXAccess(false);
    }

    backOff_.nextTick();
    const auto apps = polledApps();
    read(apps, before, hadAXAccess, trusted);
    reportSetupNeeds(apps);
}

void Watcher::readNow() {
    const bool hasAXAccess = userData_.hasAXAccess();
    read(polledApps(), userData_.truestStatus(), hasAXAccess, hasAXAccess);
}

bool Watcher::isJoin(MeetingStatus before, const std::set<std::string>& setupBefore) const {
    if (isWithoutMeeting(before)) {
        return true;
    }
    // "Setup Required..." from one app says nothing about a call in another:
    // a microphone call that starts while Zoom runs untrusted is a join.
    // Passing from setupError to a meeting in the app that needed setup is
    // not: that meeting may have been live for a while.
    return joinPastOtherSetupNeeds_ && before == MeetingStatus::setupError &&
           userData_.activeApp() != nullptr && !setupBefore.contains(userData_.activeApp()->name());
}

void Watcher::read(const std::vector<std::shared_ptr<MeetingApp>>& apps, MeetingStatus before,
                   bool hadAXAccess, bool trusted) {
    // The application already in a meeting keeps priority over those before
    // it in the list; only when it has left is the list asked, in order. One
    // whose switch went off is not asked at all. One that gives no answer has
    // not left: it stays active and the shown status stays, for this reading.
    const std::set<std::string> setupBefore = std::exchange(setupAnswers_, {});
    const std::shared_ptr<MeetingApp> previous = userData_.activeApp();
    MeetingStatus status = MeetingStatus::noMeeting;
    std::shared_ptr<MeetingApp> active;
    bool unanswered = false;
    if (previous != nullptr && std::find(apps.begin(), apps.end(), previous) != apps.end()) {
        const auto answer = ask(*previous);
        unanswered = !answer.has_value();
        if (unanswered || isInMeeting(*answer)) {
            status = answer.value_or(userData_.truestStatus());
            active = previous;
        }
    }
    if (active == nullptr) {
        for (const auto& app : apps) {
            const auto answer = ask(*app);
            if (answer == MeetingStatus::setupError) {
                status = *answer;
                setupAnswers_.insert(app->name());
            } else if (answer && isInMeeting(*answer)) {
                status = *answer;
                active = app;
                break;
            }
        }
    }

    if (previous != nullptr && (active == nullptr || active->name() != previous->name())) {
        forgetMuteButton(previous);
    }
    userData_.setActiveApp(active);
    if (!unanswered) {
        userData_.setStatus(status);
    }

    // Granted, but not while an adapter still reports a setup need: the test
    // is simply repeated next second.
    if (trusted && !hadAXAccess && status != MeetingStatus::setupError) {
        out_.line("SET TRUE " + std::string(toString(status)));
        setAXAccess(true);
    }

    const MeetingStatus shown = userData_.truestStatus();
    if ((shown == MeetingStatus::noMeeting || before == MeetingStatus::notRunning) &&
        isZoom(userData_.activeApp())) {
        forgetMuteButton(userData_.activeApp());
    }

    // Only on the tick on which the shown status goes from no meeting to live.
    if (shown == MeetingStatus::offMute && userData_.activeApp() != nullptr &&
        isJoin(before, setupBefore)) {
        const std::string name = userData_.activeApp()->name();
        if (shouldMuteOnJoin(name)) {
            out_.line("TOGGLING (auto-mute on join for " + name + ")");
            userData_.toggleMute();
        }
    }

    // An error shown while Zoom is active and the permission is believed held
    // means the permission went away without the system saying so yet.
    if (shown == MeetingStatus::error && userData_.hasAXAccess() && isZoom(userData_.activeApp())) {
        out_.line("SET FALSE LATE");
        setAXAccess(false);
    }
}

void Watcher::reportSetupNeeds(const std::vector<std::shared_ptr<MeetingApp>>& apps) {
    std::set<std::string> needing;
    for (const auto& app : apps) {
        if (!app->needsSetup()) {
            continue;
        }
        const std::string name = app->name();
        needing.insert(name);
        if (reportedSetupApps_.insert(name).second && setupCallback_) {
            setupCallback_(*app);
        }
    }
    // Forget those that no longer need it, so they are reported again if
    // they need it anew.
    std::erase_if(reportedSetupApps_,
                  [&needing](const std::string& name) { return !needing.contains(name); });
}

} // namespace hg
