#include "core/AnswerBackOff.hpp"

#include <algorithm>

namespace hg {

bool AnswerBackOff::mayAsk(const std::string& name) const {
    const auto it = pauses_.find(name);
    return it == pauses_.end() || tick_ >= it->second.resumeAt;
}

int AnswerBackOff::record(const std::string& name, bool late) {
    if (!late) {
        pauses_.erase(name);
        return 0;
    }
    Pause& pause = pauses_[name];
    pause.ticks = pause.ticks == 0 ? firstPause : std::min(pause.ticks * 2, maxPause);
    pause.resumeAt = tick_ + static_cast<std::uint64_t>(pause.ticks) + 1;
    return pause.ticks;
}

} // namespace hg
