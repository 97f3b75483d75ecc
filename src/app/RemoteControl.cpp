#include "app/RemoteControl.hpp"

#include "app/AppDelegate.hpp"
#include "core/MeetingApp.hpp"
#include "core/UserData.hpp"

namespace hg {

RemoteControl::RemoteControl(AppDelegate& delegate) : delegate_(delegate) {}

void RemoteControl::watch(UserData& userData) {
    userData_ = &userData;
    subscription_ = userData.objectWillChange().subscribe([this] { willChange_.send(); });
    willChange_.send();
}

void RemoteControl::toggle() {
    if (userData_ != nullptr) {
        userData_->toggleMute();
    }
}

MuteResult RemoteControl::setMuted(bool muted) {
    const MeetingStatus wanted = muted ? MeetingStatus::onMute : MeetingStatus::offMute;
    if (userData_ == nullptr || !isInMeeting(userData_->truestStatus())) {
        return MuteResult::noCall;
    }
    // The state asked for is the resting state: a held key must not undo it.
    if (pressedAt_) {
        settledUntil_ = *pressedAt_;
        pressedAt_.reset();
        delegate_.shortcutHoldDropped();
    }
    if (userData_->truestStatus() != wanted) {
        userData_->toggleMute();
    }
    return userData_->truestStatus() == wanted ? MuteResult::done : MuteResult::refused;
}

void RemoteControl::press(IssuedAt at) {
    if (userData_ == nullptr || pressedAt_ || at < settledUntil_) {
        return;
    }
    if (earlyRelease_ && *earlyRelease_ >= at - issueSkew) {
        // Its release overtook it: both happened, in this order.
        const IssuedAt releasedAt = *earlyRelease_;
        earlyRelease_.reset();
        applyPress(at);
        applyRelease(releasedAt);
        return;
    }
    // A release older than this press had lost its own press.
    earlyRelease_.reset();
    applyPress(at);
}

void RemoteControl::release(IssuedAt at) {
    if (at < settledUntil_) {
        return;
    }
    if (!pressedAt_) {
        if (userData_ != nullptr) {
            earlyRelease_ = at;
        }
        return;
    }
    if (at < *pressedAt_ - issueSkew) {
        // The release of an earlier press, late: this press is still held.
        return;
    }
    applyRelease(at);
}

void RemoteControl::applyPress(IssuedAt at) {
    pressedAt_ = at;
    delegate_.shortcutDown();
}

void RemoteControl::applyRelease(IssuedAt at) {
    pressedAt_.reset();
    settledUntil_ = at;
    delegate_.shortcutUp();
}

void RemoteControl::showPreferences() {
    delegate_.showPrefsWindow();
}

void RemoteControl::showDebugView() {
    delegate_.showDebugWindow();
}

MeetingStatus RemoteControl::status() const {
    return userData_ != nullptr ? userData_->truestStatus() : MeetingStatus::error;
}

std::string RemoteControl::activeAppName() {
    if (userData_ == nullptr || isWithoutMeeting(userData_->truestStatus())) {
        return {};
    }
    if (userData_->activeApp() != nullptr) {
        lastAppName_ = userData_->activeApp()->name();
    }
    return isInMeeting(userData_->truestStatus()) || userData_->activeApp() != nullptr
               ? lastAppName_
               : std::string();
}

} // namespace hg
