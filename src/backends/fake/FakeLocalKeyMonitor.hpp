#pragma once

#include "ports/LocalKeyMonitor.hpp"

#include <cstddef>
#include <map>

namespace hg {

// Local key monitors of a simulated application: deliver() hands an event to
// the installed handlers, the most recently added first, until one consumes it.
class FakeLocalKeyMonitor final : public LocalKeyMonitor {
public:
    std::uint64_t add(Handler handler) override;
    void remove(std::uint64_t token) override;

    // True when a handler consumed the event (the window never sees it).
    bool deliver(const LocalKeyEvent& event);

    [[nodiscard]] std::size_t handlerCount() const { return handlers_.size(); }

private:
    std::map<std::uint64_t, Handler> handlers_;
    std::uint64_t nextToken_ = 0;
};

} // namespace hg
