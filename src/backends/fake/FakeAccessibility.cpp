#include "backends/fake/FakeAccessibility.hpp"

namespace hg {

namespace {

std::optional<AXOp> opForAttribute(std::string_view attribute) {
    if (attribute == "AXMenuBar") {
        return AXOp::menubar;
    }
    if (attribute == "AXChildren") {
        return AXOp::children;
    }
    if (attribute == "AXRole") {
        return AXOp::role;
    }
    if (attribute == "AXTitle") {
        return AXOp::title;
    }
    return std::nullopt;
}

AXCopyResult failed(AXError code) {
    return AXCopyResult{code, std::monostate{}};
}

// The value the tree models for `op`, or the code of a read that finds none.
AXCopyResult modelledValue(AXOp op, const FakeAXElement& element) {
    switch (op) {
    case AXOp::menubar:
        if (element.menuBar == nullptr) {
            return failed(ax::noValue);
        }
        return AXCopyResult{ax::success, AXElementRef(element.menuBar)};
    case AXOp::children: {
        std::vector<AXElementRef> children(element.children.begin(), element.children.end());
        return AXCopyResult{ax::success, std::move(children)};
    }
    case AXOp::role:
        if (!element.role) {
            return failed(ax::attributeUnsupported);
        }
        return AXCopyResult{ax::success, *element.role};
    case AXOp::title:
        if (!element.title) {
            return failed(ax::attributeUnsupported);
        }
        return AXCopyResult{ax::success, *element.title};
    case AXOp::press:
        break;
    }
    return failed(ax::failure);
}

} // namespace

std::string_view toString(AXOp op) {
    switch (op) {
    case AXOp::menubar:
        return "menubar";
    case AXOp::children:
        return "children";
    case AXOp::role:
        return "role";
    case AXOp::title:
        return "title";
    case AXOp::press:
        return "press";
    }
    return "?";
}

std::shared_ptr<FakeAXElement> FakeAXElement::add(std::shared_ptr<FakeAXElement> child) {
    children.push_back(child);
    return child;
}

void FakeAXElement::markStale() {
    stale = true;
    if (menuBar != nullptr) {
        menuBar->markStale();
    }
    for (const auto& child : children) {
        child->markStale();
    }
}

std::shared_ptr<FakeAXElement> FakeAXElement::findByTitle(std::string_view wanted) {
    auto search =
        [wanted](const std::shared_ptr<FakeAXElement>& e) -> std::shared_ptr<FakeAXElement> {
        if (e == nullptr) {
            return nullptr;
        }
        if (e->title && *e->title == wanted) {
            return e;
        }
        return e->findByTitle(wanted);
    };
    if (auto found = search(menuBar)) {
        return found;
    }
    for (const auto& child : children) {
        if (auto found = search(child)) {
            return found;
        }
    }
    return nullptr;
}

bool FakeAccessibility::isProcessTrusted(bool prompt) {
    ++trustChecks_;
    if (prompt && !trusted_) {
        ++prompts_;
        if (onPrompt) {
            onPrompt();
        }
    }
    return trusted_;
}

AXElementRef FakeAccessibility::createApplication(ProcessId pid) {
    if (const auto it = applications_.find(pid); it != applications_.end()) {
        return it->second;
    }
    auto gone = FakeAXElement::make("AXApplication", std::nullopt);
    gone->stale = true;
    return gone;
}

void FakeAccessibility::setApplication(ProcessId pid, std::shared_ptr<FakeAXElement> application) {
    applications_[pid] = std::move(application);
}

AXError FakeAccessibility::blockingFailure(AXOp op, const FakeAXElement& element) const {
    if (const auto it = failures_.find(op); it != failures_.end()) {
        return it->second;
    }
    if (const auto it = element.failures.find(op); it != element.failures.end()) {
        return it->second;
    }
    if (!trusted_) {
        return ax::apiDisabled;
    }
    if (unresponsive_) {
        return ax::cannotComplete;
    }
    if (element.stale) {
        return ax::invalidUIElement;
    }
    return ax::success;
}

void FakeAccessibility::record(AXOp op, const FakeAXElement* element, AXError result) {
    const Call call{op, (element != nullptr && element->title) ? *element->title : std::string(),
                    result};
    calls_.push_back(call);
    if (onCall) {
        onCall(call);
    }
}

AXCopyResult FakeAccessibility::copyAttributeValue(const AXElementRef& element,
                                                   std::string_view attribute) {
    const auto op = opForAttribute(attribute);
    if (!op) {
        return failed(ax::attributeUnsupported);
    }
    const auto* fake = dynamic_cast<const FakeAXElement*>(element.get());
    if (fake == nullptr) {
        record(*op, nullptr, ax::illegalArgument);
        return failed(ax::illegalArgument);
    }
    AXCopyResult result;
    if (const AXError code = blockingFailure(*op, *fake); code != ax::success) {
        result = failed(code);
        result.timedOut =
            unresponsive_ && trusted_ && !failures_.contains(*op) && !fake->failures.contains(*op);
    } else if (const auto raw = fake->rawValues.find(*op); raw != fake->rawValues.end()) {
        result = AXCopyResult{ax::success, raw->second};
    } else {
        result = modelledValue(*op, *fake);
    }
    record(*op, fake, result.error);
    return result;
}

AXError FakeAccessibility::performAction(const AXElementRef& element, std::string_view action) {
    auto* fake = dynamic_cast<FakeAXElement*>(element.get());
    if (fake == nullptr) {
        record(AXOp::press, nullptr, ax::illegalArgument);
        return ax::illegalArgument;
    }
    AXError code = blockingFailure(AXOp::press, *fake);
    if (code == ax::success && action != "AXPress") {
        code = ax::actionUnsupported;
    }
    // The title recorded is the one the item had when it was pressed.
    const std::optional<std::string> titleBefore = fake->title;
    if (code == ax::success && fake->onPress) {
        const auto hook = fake->onPress; // the hook may replace itself
        code = hook();
    }
    const Call call{AXOp::press, titleBefore.value_or(std::string()), code};
    calls_.push_back(call);
    if (onCall) {
        onCall(call);
    }
    return code;
}

} // namespace hg
