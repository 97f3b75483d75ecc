#pragma once

#include "ports/EventTap.hpp"

#include <cstdint>
#include <memory>

namespace hg {

// The event-tap port over a Core Graphics session event tap: inserted at the
// head, active (it may remove events), for key down, key up and flags changed.
// Its run-loop source sits on the main run loop in the common modes, so the
// callback runs on the main thread, also while a menu is open. Every key the
// user types waits for the callback: what it sets off runs afterwards, from
// the main queue. Creating the tap fails for a process that is not trusted for
// Accessibility. Removed when destroyed.
class MacEventTap final : public EventTap {
public:
    MacEventTap();
    ~MacEventTap() override;
    MacEventTap(const MacEventTap&) = delete;
    MacEventTap& operator=(const MacEventTap&) = delete;

    // Main thread only, like the other two.
    bool install(Callback callback) override;
    void setEnabled(bool enabled) override;
    void remove() override;
    void runAfterCallback(std::function<void()> action) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The TapEvent of a Core Graphics event of `type` (`cgEvent` is a CGEventRef).
// The two tap-disabled notifications carry no keyboard fields and give only
// their type. Navigation keys lose the function flag (NavigationKeyFlags.hpp).
[[nodiscard]] TapEvent tapEventFromCGEvent(std::uint32_t type, const void* cgEvent);

} // namespace hg
