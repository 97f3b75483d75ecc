#pragma once

#include "ports/LocalKeyMonitor.hpp"

#include <memory>

namespace hg {

// NSEvent local monitors for key down and flags changed: they see this
// application's key events before its windows do. Modifiers are the event's
// raw modifier flags. Main thread only; destroying the object removes its
// monitors.
class MacLocalKeyMonitor final : public LocalKeyMonitor {
public:
    MacLocalKeyMonitor();
    ~MacLocalKeyMonitor() override;
    MacLocalKeyMonitor(const MacLocalKeyMonitor&) = delete;
    MacLocalKeyMonitor& operator=(const MacLocalKeyMonitor&) = delete;

    std::uint64_t add(Handler handler) override;
    void remove(std::uint64_t token) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
