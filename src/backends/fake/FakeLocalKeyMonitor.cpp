#include "backends/fake/FakeLocalKeyMonitor.hpp"

#include <utility>
#include <vector>

namespace hg {

std::uint64_t FakeLocalKeyMonitor::add(Handler handler) {
    const auto token = ++nextToken_;
    handlers_.emplace(token, std::move(handler));
    return token;
}

void FakeLocalKeyMonitor::remove(std::uint64_t token) {
    handlers_.erase(token);
}

bool FakeLocalKeyMonitor::deliver(const LocalKeyEvent& event) {
    // Handlers may add or remove handlers (a recorder stops itself from within
    // its handler), so walk a snapshot and skip those removed on the way.
    std::vector<std::uint64_t> order;
    order.reserve(handlers_.size());
    for (auto it = handlers_.rbegin(); it != handlers_.rend(); ++it) {
        order.push_back(it->first);
    }
    for (const auto token : order) {
        const auto it = handlers_.find(token);
        if (it == handlers_.end()) {
            continue;
        }
        const Handler handler = it->second;
        if (handler && handler(event)) {
            return true;
        }
    }
    return false;
}

} // namespace hg
