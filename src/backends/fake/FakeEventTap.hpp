#pragma once

#include "ports/EventTap.hpp"

#include <cstddef>
#include <optional>
#include <vector>

namespace hg {

// An event tap on a simulated keyboard. `installable` plays the part of
// Accessibility trust: when false, install() fails as the system refuses the
// tap of an untrusted process.
class FakeEventTap final : public EventTap {
public:
    bool installable = true;
    // Whether events carry fn, as on a Mac; false plays a PC desktop.
    bool functionKeySeen = true;

    // Called with true after a successful install and with false after an
    // installed tap is removed; not for enabling or disabling.
    std::function<void(bool installed)> onInstalledChanged;

    bool install(Callback callback) override;
    void setEnabled(bool enabled) override;
    void remove() override;
    // Queued while the callback runs and run, in order, once it has returned,
    // before deliver() returns; asked outside a callback, at once.
    void runAfterCallback(std::function<void()> action) override;
    [[nodiscard]] bool seesFunctionKey() const override { return functionKeySeen; }

    [[nodiscard]] bool isInstalled() const { return installed_; }
    [[nodiscard]] bool isEnabled() const { return installed_ && enabled_; }
    [[nodiscard]] int installCount() const { return installs_; }

    // Delivers one event as the system would. Keyboard events reach only an
    // installed, enabled tap. The two tap-disabled notifications first disable
    // the tap (that is what they report) and then reach it even though it is
    // disabled. Returns the tap's decision, or nothing when no tap saw the event.
    std::optional<TapDecision> deliver(const TapEvent& event);

    // Every event that a tap removed from the stream, oldest first.
    [[nodiscard]] const std::vector<TapEvent>& removedEvents() const { return removed_; }
    [[nodiscard]] std::size_t deliveredCount() const { return delivered_; }

private:
    Callback callback_;
    bool installed_ = false;
    bool enabled_ = false;
    int installs_ = 0;
    std::size_t delivered_ = 0;
    std::vector<TapEvent> removed_;
    bool inCallback_ = false;
    std::vector<std::function<void()>> afterCallback_;
};

} // namespace hg
