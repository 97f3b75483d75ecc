#include "backends/fake/FakeEventTap.hpp"

#include <utility>

namespace hg {

bool FakeEventTap::install(Callback callback) {
    if (!installable) {
        return false;
    }
    const bool replaced = installed_;
    if (replaced) {
        remove();
    }
    callback_ = std::move(callback);
    installed_ = true;
    // A newly created tap is enabled, as a Core Graphics tap is.
    enabled_ = true;
    ++installs_;
    if (onInstalledChanged) {
        onInstalledChanged(true);
    }
    return true;
}

void FakeEventTap::setEnabled(bool enabled) {
    if (installed_) {
        enabled_ = enabled;
    }
}

void FakeEventTap::remove() {
    if (!installed_) {
        return;
    }
    installed_ = false;
    enabled_ = false;
    callback_ = nullptr;
    if (onInstalledChanged) {
        onInstalledChanged(false);
    }
}

std::optional<TapDecision> FakeEventTap::deliver(const TapEvent& event) {
    if (!installed_) {
        return std::nullopt;
    }
    const bool disabling =
        event.type == tapevent::disabledByTimeout || event.type == tapevent::disabledByUserInput;
    if (disabling) {
        enabled_ = false;
    } else if (!enabled_) {
        return std::nullopt;
    }
    ++delivered_;
    // The callback may remove or replace the tap; keep this one alive meanwhile.
    const Callback callback = callback_;
    inCallback_ = true;
    const TapDecision decision = callback ? callback(event) : TapDecision::pass;
    inCallback_ = false;
    if (decision == TapDecision::remove) {
        removed_.push_back(event);
    }
    // What the decision set off runs after it, as on the main queue; an
    // action may deliver further events and queue more.
    auto queued = std::move(afterCallback_);
    afterCallback_.clear();
    for (auto& action : queued) {
        action();
    }
    return decision;
}

void FakeEventTap::runAfterCallback(std::function<void()> action) {
    if (inCallback_) {
        afterCallback_.push_back(std::move(action));
    } else {
        action();
    }
}

} // namespace hg
