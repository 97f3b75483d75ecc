#pragma once

#include "core/MeetingApp.hpp"
#include "core/MeetingStatus.hpp"
#include "core/Observable.hpp"
#include "core/StatusSet.hpp"
#include "ports/Clock.hpp"
#include "ports/LineSink.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace hg {

class GremlinMenu;

// What the program believes about the user's meeting, and the rules that keep
// the shown status calm: readings are withheld for a while after a toggle, an
// error is shown only once it persists, and a toggle shows its result before
// the application confirms it. Every status it decides to show goes to the
// menu. Main thread only.
class UserData {
public:
    static constexpr Seconds toggleQuietTime{1.5};
    static constexpr Seconds errorPersistence{2.0};
    static constexpr std::size_t historyLimit = 10;

    // `barItem`, `clock` and `out` must outlive this object. Does not touch
    // the menu.
    UserData(GremlinMenu& barItem, const Clock& clock, LineSink& out);
    UserData(const UserData&) = delete;
    UserData& operator=(const UserData&) = delete;

    [[nodiscard]] ObjectWillChange& objectWillChange() { return objectWillChange_; }

    // Published: each set announces itself first.
    [[nodiscard]] MeetingStatus truestStatus() const { return truestStatus_; }
    [[nodiscard]] MeetingStatus readStatus() const { return readStatus_; }
    [[nodiscard]] bool hasAXAccess() const { return hasAXAccess_; }
    void setHasAXAccess(bool hasAXAccess) { hasAXAccess_ = hasAXAccess; }
    // Newest first, at most historyLimit entries, ids falling by one.
    [[nodiscard]] const std::vector<StatusSet>& statusHistory() const { return statusHistory_; }

    [[nodiscard]] Instant lastToggle() const { return lastToggle_; }
    [[nodiscard]] std::optional<Instant> firstError() const { return firstError_; }
    // The id the next snapshot gets.
    [[nodiscard]] std::int64_t statusCounts() const { return statusCounts_; }

    [[nodiscard]] const std::shared_ptr<MeetingApp>& activeApp() const { return activeApp_; }
    void setActiveApp(std::shared_ptr<MeetingApp> app) { activeApp_ = std::move(app); }

    [[nodiscard]] GremlinMenu& barItem() { return barItem_; }
    [[nodiscard]] const Clock& clock() const { return clock_; }

    // The one entry point for readings.
    void setStatus(MeetingStatus status);
    // Flips the active application's microphone; nothing without one.
    void toggleMute();
    // Reads the active application at once.
    void refreshStatus();
    void hotkeyDown();
    void hotkeyUp();
    void recordHistory();

private:
    [[nodiscard]] bool withinToggleQuietTime() const;

    GremlinMenu& barItem_;
    const Clock& clock_;
    LineSink& out_;

    ObjectWillChange objectWillChange_;
    Published<MeetingStatus> truestStatus_{objectWillChange_, MeetingStatus::error};
    Published<MeetingStatus> readStatus_{objectWillChange_, MeetingStatus::error};
    Published<bool> hasAXAccess_{objectWillChange_, false};
    Published<std::vector<StatusSet>> statusHistory_{objectWillChange_, {}};

    Instant lastToggle_ = Clock::distantPast();
    std::optional<Instant> firstError_;
    std::int64_t statusCounts_ = 0;
    std::shared_ptr<MeetingApp> activeApp_;
};

} // namespace hg
