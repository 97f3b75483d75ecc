#include "backends/fake/FakeLoginItems.hpp"

namespace hg {

std::optional<std::string> FakeLoginItems::answer(Call call, Status success) {
    calls_.push_back(call);
    if (onCall) {
        onCall(call);
    }
    if (fail) {
        return std::string(failureDescription);
    }
    status_ = success;
    return std::nullopt;
}

std::optional<std::string> FakeLoginItems::registerItem() {
    return answer(Call::registerItem, Status::enabled);
}

std::optional<std::string> FakeLoginItems::unregisterItem() {
    return answer(Call::unregisterItem, Status::notRegistered);
}

} // namespace hg
