#include "core/UserData.hpp"

#include "menu/GremlinMenu.hpp"

namespace hg {

UserData::UserData(GremlinMenu& barItem, const Clock& clock, LineSink& out)
    : barItem_(barItem), clock_(clock), out_(out) {}

bool UserData::withinToggleQuietTime() const {
    return absoluteInterval(clock_.now(), lastToggle_) < toggleQuietTime;
}

void UserData::setStatus(MeetingStatus status) {
    readStatus_ = status;
    recordHistory();
    if (withinToggleQuietTime()) {
        return;
    }
    if (status != MeetingStatus::error) {
        firstError_.reset();
    } else if (!firstError_) {
        out_.line("setting recent err");
        firstError_ = clock_.now();
        return;
    } else if (absoluteInterval(clock_.now(), *firstError_) < errorPersistence) {
        out_.line("Skipping recent err");
        return;
    }
    truestStatus_ = status;
    barItem_.updateMenu(status);
}

void UserData::toggleMute() {
    if (!activeApp_) {
        return;
    }
    // Held for the call: the adapter may be replaced while it answers.
    const auto app = activeApp_;
    const MeetingStatus before = truestStatus_;
    if (before == MeetingStatus::offMute || before == MeetingStatus::onMute) {
        const MeetingStatus flipped =
            before == MeetingStatus::offMute ? MeetingStatus::onMute : MeetingStatus::offMute;
        truestStatus_ = flipped;
        barItem_.updateMenu(flipped);
    }
    const MeetingStatus result = app->toggleMute(before);
    if (result == MeetingStatus::offMute) {
        lastToggle_ = clock_.now();
        recordHistory();
        return;
    }
    truestStatus_ = before;
    barItem_.updateMenu(before);
    setStatus(result);
}

void UserData::refreshStatus() {
    out_.line("BUTTON PRESSED HERE!");
    if (!activeApp_) {
        return;
    }
    const auto app = activeApp_;
    setStatus(app->fetchStatus());
}

void UserData::hotkeyDown() {
    if (isWithoutMeeting(truestStatus_)) {
        barItem_.menubarItem().setImage("SideEyeIcon");
        return;
    }
    toggleMute();
}

void UserData::hotkeyUp() {
    if (isWithoutMeeting(truestStatus_)) {
        barItem_.updateMenu(truestStatus_);
        return;
    }
    toggleMute();
}

void UserData::recordHistory() {
    const StatusSet snapshot{statusCounts_, truestStatus_, readStatus_, hasAXAccess_};
    ++statusCounts_;
    auto history = statusHistory_.get();
    history.insert(history.begin(), snapshot);
    statusHistory_ = history;
    if (history.size() > historyLimit) {
        history.resize(historyLimit);
        statusHistory_ = std::move(history);
    }
}

} // namespace hg
