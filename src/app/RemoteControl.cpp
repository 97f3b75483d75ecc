#include "app/RemoteControl.hpp"

#include "app/AppDelegate.hpp"
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

void RemoteControl::press() {
    if (pressed_ || userData_ == nullptr) {
        return;
    }
    pressed_ = true;
    delegate_.shortcutDown();
}

void RemoteControl::release() {
    if (!pressed_) {
        return;
    }
    pressed_ = false;
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

} // namespace hg
