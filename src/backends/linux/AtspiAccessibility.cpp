#include "backends/linux/AtspiAccessibility.hpp"

#include "backends/linux/AtspiElement.hpp"
#include "backends/linux/AtspiErrors.hpp"
#include "backends/linux/AtspiNames.hpp"
#include "backends/linux/AtspiReplies.hpp"
#include "backends/linux/AtspiRoles.hpp"

#include <algorithm>

namespace hg {

namespace {

AXError failureCode(const char* name) {
    return axErrorFor(QLatin1String(name));
}

AXCopyResult failed(AXError code) {
    return AXCopyResult{code, std::monostate{}};
}

} // namespace

AtspiAccessibility::AtspiAccessibility() : AtspiAccessibility(Options{}) {}

AtspiAccessibility::AtspiAccessibility(Options options)
    : bus_(options.timeout), alwaysOn_(options.alwaysOn.value_or(
                                 qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"))) {}

bool AtspiAccessibility::isProcessTrusted(bool prompt) {
    if (!bus_.connect()) {
        return false;
    }
    if (alwaysOn_) {
        return true;
    }
    std::optional<bool> enabled;
    if (switch_.start()) {
        enabled = switch_.known();
    }
    if (!enabled) {
        enabled = bus_.isEnabled();
        switch_.remember(enabled);
    }
    if (enabled.value_or(false)) {
        return true;
    }
    if (prompt && bus_.setEnabled(true)) {
        switch_.remember(true);
    }
    return false;
}

void AtspiAccessibility::learnProcesses(const std::vector<AtspiObjectRef>& applications) {
    if (processesGeneration_ != bus_.generation()) {
        processes_.clear();
        processesGeneration_ = bus_.generation();
    }
    std::vector<QString> unknown;
    std::vector<AtspiRequest> requests;
    for (const auto& application : applications) {
        if (!processes_.contains(application.service)) {
            unknown.push_back(application.service);
            requests.push_back({QStringLiteral("org.freedesktop.DBus"),
                                QStringLiteral("/org/freedesktop/DBus"),
                                QStringLiteral("org.freedesktop.DBus"),
                                QStringLiteral("GetConnectionUnixProcessID"),
                                {QVariant(application.service)}});
        }
    }
    const std::vector<AtspiReply> replies = bus_.callAll(requests);
    // The calls may have reopened the bus; only names of the current one are kept.
    if (processesGeneration_ != bus_.generation()) {
        return;
    }
    for (std::size_t i = 0; i < replies.size(); ++i) {
        const AtspiReply& reply = replies[i];
        if (reply.error == ax::success && reply.arguments.size() == 1 &&
            reply.arguments.front().typeId() == QMetaType::UInt) {
            processes_[unknown[i]] = static_cast<ProcessId>(reply.arguments.front().toUInt());
        }
    }
}

std::optional<ProcessId> AtspiAccessibility::processOf(const QString& service) const {
    const auto it = processes_.find(service);
    if (it == processes_.end() || processesGeneration_ != bus_.generation()) {
        return std::nullopt;
    }
    return it->second;
}

AXError AtspiAccessibility::applications(std::vector<AtspiObjectRef>& out) {
    const AtspiReply reply =
        bus_.call(atspiName::registryService, atspiName::rootPath, atspiName::accessibleInterface,
                  QStringLiteral("GetChildren"));
    if (reply.error != ax::success) {
        return reply.error;
    }
    const auto refs =
        reply.arguments.size() == 1 ? readObjectRefs(reply.arguments.front()) : std::nullopt;
    if (!refs) {
        return failureCode(atspiFailure::badReply);
    }
    out.assign(refs->begin(), refs->end());
    return ax::success;
}

void AtspiAccessibility::forgetUnregistered(const std::vector<AtspiObjectRef>& applications) {
    std::erase_if(processes_, [&applications](const auto& entry) {
        return std::none_of(
            applications.begin(), applications.end(),
            [&entry](const AtspiObjectRef& app) { return app.service == entry.first; });
    });
}

AXElementRef AtspiAccessibility::createApplication(ProcessId pid) {
    // Every read of an application starts here: what an earlier walk learnt
    // may be out of date.
    tree_.forget();
    if (!bus_.connect()) {
        return AtspiElement::dead(failureCode(atspiFailure::busUnreachable));
    }
    if (applicationsGeneration_ != bus_.generation()) {
        applicationOf_.clear();
        applicationsGeneration_ = bus_.generation();
    }
    // A process keeps its connection to the bus: the registry is asked once.
    // Should the application be gone, its first read fails and the next
    // lookup asks again.
    if (const auto known = applicationOf_.find(pid); known != applicationOf_.end()) {
        return std::make_shared<AtspiElement>(known->second.service, known->second.path,
                                              bus_.generation());
    }
    std::vector<AtspiObjectRef> registered;
    if (const AXError code = applications(registered); code != ax::success) {
        return AtspiElement::dead(code);
    }
    forgetUnregistered(registered);
    learnProcesses(registered);
    for (const auto& application : registered) {
        if (processOf(application.service) == pid) {
            if (applicationOf_.size() >= 64) {
                applicationOf_.clear();
            }
            applicationOf_[pid] = application;
            return std::make_shared<AtspiElement>(application.service, application.path,
                                                  bus_.generation());
        }
    }
    return AtspiElement::dead(failureCode(atspiFailure::noApplication));
}

void AtspiAccessibility::forgetApplicationOnFailure(const AtspiElement& element, AXError code) {
    if (code == ax::invalidUIElement) {
        std::erase_if(applicationOf_, [&element](const auto& entry) {
            return entry.second.service == element.service();
        });
    }
}

std::vector<ProcessId> AtspiAccessibility::registeredProcessIds() {
    std::vector<AtspiObjectRef> registered;
    std::vector<ProcessId> pids;
    if (applications(registered) != ax::success) {
        return pids;
    }
    forgetUnregistered(registered);
    learnProcesses(registered);
    for (const auto& application : registered) {
        if (const auto pid = processOf(application.service)) {
            pids.push_back(*pid);
        }
    }
    return pids;
}

AXError AtspiAccessibility::unusable(const AtspiElement& element) const {
    if (element.failure() != ax::success) {
        return element.failure();
    }
    // Bus names start over when the bus is opened anew: an old name may now
    // belong to another application.
    if (element.generation() != bus_.generation()) {
        return failureCode(atspiFailure::noApplication);
    }
    return ax::success;
}

AXCopyResult AtspiAccessibility::copyAttributeValue(const AXElementRef& element,
                                                    std::string_view attribute) {
    const auto* atspi = dynamic_cast<const AtspiElement*>(element.get());
    if (atspi == nullptr) {
        return failed(ax::illegalArgument);
    }
    if (!bus_.connect()) {
        return failed(failureCode(atspiFailure::busUnreachable));
    }
    if (const AXError code = unusable(*atspi); code != ax::success) {
        return failed(code);
    }
    AXCopyResult result = failed(failureCode(atspiFailure::unknownAttribute));
    if (attribute == "AXChildren") {
        result = children(*atspi);
    } else if (attribute == "AXRole") {
        result = role(*atspi);
    } else if (attribute == "AXTitle") {
        result = title(*atspi);
    } else if (attribute == "AXMenuBar") {
        result = menuBar(*atspi);
    }
    forgetApplicationOnFailure(*atspi, result.error);
    // A read fails that way only when the application did not answer in time.
    result.timedOut = result.error == ax::cannotComplete;
    return result;
}

AXCopyResult AtspiAccessibility::children(const AtspiElement& element) {
    std::vector<AtspiObjectRef> refs;
    if (const AXError code = tree_.children({element.service(), element.path()}, refs);
        code != ax::success) {
        return failed(code);
    }
    std::vector<AXElementRef> elements;
    elements.reserve(refs.size());
    for (auto& ref : refs) {
        elements.push_back(std::make_shared<AtspiElement>(std::move(ref.service),
                                                          std::move(ref.path), bus_.generation()));
    }
    return AXCopyResult{ax::success, std::move(elements)};
}

AXCopyResult AtspiAccessibility::role(const AtspiElement& element) {
    std::uint32_t number = 0;
    if (const AXError code = tree_.role({element.service(), element.path()}, number);
        code != ax::success) {
        return failed(code);
    }
    return AXCopyResult{ax::success, std::string(axRoleName(number))};
}

AXCopyResult AtspiAccessibility::title(const AtspiElement& element) {
    QString name;
    if (const AXError code = tree_.name({element.service(), element.path()}, name);
        code != ax::success) {
        return failed(code);
    }
    return AXCopyResult{ax::success, name.toStdString()};
}

AXCopyResult AtspiAccessibility::menuBar(const AtspiElement& element) {
    AtspiObjectRef found;
    if (const AXError code = tree_.menuBar({element.service(), element.path()}, found);
        code != ax::success) {
        return failed(code);
    }
    return AXCopyResult{ax::success,
                        AXElementRef(std::make_shared<AtspiElement>(
                            std::move(found.service), std::move(found.path), bus_.generation()))};
}

AXError AtspiAccessibility::performAction(const AXElementRef& element, std::string_view action) {
    const auto* atspi = dynamic_cast<const AtspiElement*>(element.get());
    if (atspi == nullptr) {
        return ax::illegalArgument;
    }
    if (!bus_.connect()) {
        return failureCode(atspiFailure::busUnreachable);
    }
    if (const AXError code = unusable(*atspi); code != ax::success) {
        return code;
    }
    if (action != "AXPress") {
        return failureCode(atspiFailure::noAction);
    }
    const AXError code = press(*atspi);
    forgetApplicationOnFailure(*atspi, code);
    // The application's menus may look different now.
    tree_.forget();
    return code;
}

AXError AtspiAccessibility::press(const AtspiElement& element) {
    if (actionCountsGeneration_ != bus_.generation()) {
        actionCounts_.clear();
        actionCountsGeneration_ = bus_.generation();
    }
    const QString& service = element.service();
    const QString& path = element.path();
    const std::pair<QString, QString> key{service, path};
    const bool countKnown = actionCounts_.contains(key);
    const AtspiRequest doAction{
        service, path, atspiName::actionInterface, QStringLiteral("DoAction"), {QVariant(0)}};
    // An element pressed before is asked for its state and pressed in one
    // round trip. The application answers in order, so the state is the one
    // the press met; a disabled item ignores the press in every toolkit.
    std::vector<AtspiReply> replies = bus_.callAll({
        {service, path, atspiName::accessibleInterface, QStringLiteral("GetState")},
        countKnown
            ? doAction
            : AtspiRequest{service, path, atspiName::actionInterface, QStringLiteral("GetActions")},
    });
    const AtspiReply& state = replies[0];
    if (state.error != ax::success) {
        return state.error;
    }
    const auto words =
        state.arguments.size() == 1 ? readStateWords(state.arguments.front()) : std::nullopt;
    if (!words) {
        return failureCode(atspiFailure::badReply);
    }
    // Qt would answer a disabled item's press with true and do nothing; a
    // hidden Qt item is disabled too.
    if (!hasState(*words, atspiState::enabled) && !hasState(*words, atspiState::sensitive)) {
        return failureCode(atspiFailure::disabled);
    }

    if (!countKnown) {
        const AtspiReply& actions = replies[1];
        if (actions.error != ax::success) {
            // An element without the action interface simply has no action.
            const bool missing = actions.error == failureCode(atspiFailure::unknownAttribute);
            return missing ? failureCode(atspiFailure::noAction) : actions.error;
        }
        const auto count = actions.arguments.size() == 1
                               ? readActionCount(actions.arguments.front())
                               : std::nullopt;
        if (!count) {
            return failureCode(atspiFailure::badReply);
        }
        if (*count == 0) {
            return failureCode(atspiFailure::noAction);
        }
        // The elements of a session's presses are few; should they not be,
        // the oldest knowledge goes.
        if (actionCounts_.size() >= 64) {
            actionCounts_.clear();
        }
        actionCounts_[key] = *count;
        replies = bus_.callAll({doAction});
    }

    const AtspiReply& done = replies.back();
    if (done.error != ax::success) {
        actionCounts_.erase(key);
        return done.error;
    }
    if (done.arguments.size() != 1 || done.arguments.front().typeId() != QMetaType::Bool) {
        return failureCode(atspiFailure::badReply);
    }
    return done.arguments.front().toBool() ? ax::success : failureCode(atspiFailure::actionRefused);
}

} // namespace hg
