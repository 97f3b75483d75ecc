#pragma once

#include "ports/Clock.hpp"
#include "ports/RunningApplications.hpp"

#include <optional>

namespace hg {

// Answers repeated questions within a moment from one listing. A watcher tick
// asks for the running applications once per meeting app (and again through
// the accessibility adapter), all within a few milliseconds; listing them on
// Linux means reading every process's folder under /proc, which is most of
// what the idle program costs. A listing is reused for `maxAge`, far shorter
// than the one-second tick, so every tick still sees a fresh one.
class BriefRunningApplicationsCache final : public RunningApplications {
public:
    // `inner` and `clock` must outlive this object.
    BriefRunningApplicationsCache(const RunningApplications& inner, const Clock& clock,
                                  Duration maxAge)
        : inner_(inner), clock_(clock), maxAge_(maxAge) {}

    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override {
        const Instant now = clock_.now();
        if (!listedAt_ || now < *listedAt_ || now - *listedAt_ > maxAge_) {
            listing_ = inner_.runningApplications();
            listedAt_ = now;
        }
        return listing_;
    }

private:
    const RunningApplications& inner_;
    const Clock& clock_;
    Duration maxAge_;
    mutable std::vector<RunningApplication> listing_;
    mutable std::optional<Instant> listedAt_;
};

} // namespace hg
