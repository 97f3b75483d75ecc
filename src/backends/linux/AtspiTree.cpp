#include "backends/linux/AtspiTree.hpp"

#include "backends/linux/AtspiErrors.hpp"
#include "backends/linux/AtspiRoles.hpp"

#include <algorithm>

namespace hg {

namespace {

const QString accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
const QString componentInterface = QStringLiteral("org.a11y.atspi.Component");

// The requests of one object, in the order store() reads their replies.
enum Ask : std::size_t { askRole, askName, askStates, askChildren, askArea, askCount };

// ATSPI_COORD_TYPE_WINDOW: any frame of reference tells an empty area.
constexpr unsigned windowCoordinates = 1;

// Menu bars sit a few levels below their window (GTK nests them in boxes).
constexpr int maxMenuBarDepth = 6;
// Objects looked at on one level of that search.
constexpr std::size_t maxMenuBarBreadth = 64;

// Top-level menus remembered across walks; an application has a dozen.
constexpr std::size_t maxTopLevelMenus = 256;

// After this long without a question the tree may have changed.
constexpr std::chrono::milliseconds idleLimit{250};

bool isMenuEntry(std::uint32_t role) {
    return role == atspiRole::menuItem || role == atspiRole::checkMenuItem ||
           role == atspiRole::radioMenuItem || role == atspiRole::tearoffMenuItem ||
           role == atspiRole::separator;
}

AXError failureCode(const char* name) {
    return axErrorFor(QLatin1String(name));
}

} // namespace

AtspiTree::AtspiTree(AtspiBus& bus) : bus_(bus) {}

void AtspiTree::forget() {
    known_.clear();
    stopped_.clear();
    if (topLevelGeneration_ != bus_.generation() || topLevel_.size() > maxTopLevelMenus) {
        topLevel_.clear();
        topLevelGeneration_ = bus_.generation();
    }
}

void AtspiTree::forgetWhenIdle() {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastUse_ > idleLimit) {
        forget();
    }
    lastUse_ = now;
}

void AtspiTree::learn(const std::vector<AtspiObjectRef>& objects) {
    std::vector<AtspiObjectRef> asked;
    std::vector<AtspiRequest> requests;
    for (const auto& object : objects) {
        const Key key{object.service, object.path};
        if (known_.contains(key)) {
            continue;
        }
        if (stopped_.contains(object.service)) {
            Facts& facts = known_[key];
            facts.roleError = facts.nameError = facts.childrenError = ax::cannotComplete;
            continue;
        }
        known_[key] = Facts{};
        asked.push_back(object);
        const QString& service = object.service;
        const QString& path = object.path;
        requests.push_back({service, path, accessibleInterface, QStringLiteral("GetRole")});
        requests.push_back(
            AtspiBus::propertyRequest(service, path, accessibleInterface, QStringLiteral("Name")));
        requests.push_back({service, path, accessibleInterface, QStringLiteral("GetState")});
        requests.push_back({service, path, accessibleInterface, QStringLiteral("GetChildren")});
        requests.push_back({service,
                            path,
                            componentInterface,
                            QStringLiteral("GetExtents"),
                            {QVariant(windowCoordinates)}});
    }
    if (requests.empty()) {
        return;
    }
    const std::vector<AtspiReply> replies = bus_.callAll(requests);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        store(asked[i], replies, i * askCount);
    }
    lastUse_ = std::chrono::steady_clock::now();
}

void AtspiTree::store(const AtspiObjectRef& object, const std::vector<AtspiReply>& replies,
                      std::size_t first) {
    Facts& facts = known_[Key{object.service, object.path}];
    const AXError badReply = failureCode(atspiFailure::badReply);
    const auto reply = [&](Ask ask) -> const AtspiReply& { return replies[first + ask]; };
    // The one argument of a successful reply, or none.
    const auto single = [&](const AtspiReply& answer) -> const QVariant* {
        return answer.error == ax::success && answer.arguments.size() == 1
                   ? &answer.arguments.front()
                   : nullptr;
    };

    facts.roleError = reply(askRole).error;
    if (const QVariant* value = single(reply(askRole)); value != nullptr) {
        facts.roleError = value->typeId() == QMetaType::UInt ? ax::success : badReply;
        facts.role = value->toUInt();
    }

    const AtspiReply nameReply = AtspiBus::propertyValue(reply(askName));
    facts.nameError = nameReply.error;
    if (const QVariant* value = single(nameReply); value != nullptr) {
        facts.nameError = value->typeId() == QMetaType::QString ? ax::success : badReply;
        facts.name = value->toString().trimmed();
    }

    if (const QVariant* value = single(reply(askStates)); value != nullptr) {
        facts.states = readStateWords(*value);
    }
    if (const QVariant* value = single(reply(askArea)); value != nullptr) {
        facts.hasArea = readHasArea(*value);
    }

    facts.childrenError = reply(askChildren).error;
    if (const QVariant* value = single(reply(askChildren)); value != nullptr) {
        const auto refs = readObjectRefs(*value);
        facts.childrenError = refs ? ax::success : badReply;
        if (refs) {
            facts.children.assign(refs->begin(), refs->end());
        }
        for (auto& child : facts.children) {
            // Some toolkits leave the bus name out for objects of their own.
            if (child.service.isEmpty()) {
                child.service = object.service;
            }
        }
    }

    const bool timedOut =
        std::any_of(replies.begin() + static_cast<std::ptrdiff_t>(first),
                    replies.begin() + static_cast<std::ptrdiff_t>(first + askCount),
                    [](const AtspiReply& answer) { return answer.error == ax::cannotComplete; });
    if (timedOut) {
        stopped_.insert(object.service);
    }
}

AtspiTree::Facts& AtspiTree::facts(const AtspiObjectRef& object) {
    learn({object});
    return known_[Key{object.service, object.path}];
}

bool AtspiTree::hidden(const Facts& facts) const {
    return facts.roleError == ax::success && isMenuEntry(facts.role) && facts.states &&
           isOutOfSight(*facts.states, facts.hasArea);
}

AXError AtspiTree::children(const AtspiObjectRef& object, std::vector<AtspiObjectRef>& out) {
    forgetWhenIdle();
    const Facts& parent = facts(object);
    if (parent.childrenError != ax::success) {
        return parent.childrenError;
    }
    const std::vector<AtspiObjectRef> listed = parent.children;
    const bool menuBar = parent.roleError == ax::success && parent.role == atspiRole::menuBar;
    learn(listed);
    out.clear();
    for (const auto& child : listed) {
        const Facts& childFacts = known_[Key{child.service, child.path}];
        if (menuBar) {
            topLevel_.insert(Key{child.service, child.path});
        }
        if (!hidden(childFacts)) {
            out.push_back(child);
        }
    }
    return ax::success;
}

AXError AtspiTree::role(const AtspiObjectRef& object, std::uint32_t& out) {
    forgetWhenIdle();
    const Facts& known = facts(object);
    if (known.roleError != ax::success) {
        return known.roleError;
    }
    // GTK gives a menu bar's entries the role of the menus they open; they
    // are items of the bar all the same.
    const bool topLevel = topLevel_.contains(Key{object.service, object.path});
    out = topLevel && known.role == atspiRole::menu ? atspiRole::menuItem : known.role;
    return ax::success;
}

AXError AtspiTree::name(const AtspiObjectRef& object, QString& out) {
    forgetWhenIdle();
    const Facts& known = facts(object);
    if (known.nameError == ax::success) {
        out = known.name;
    }
    return known.nameError;
}

AXError AtspiTree::menuBar(const AtspiObjectRef& application, AtspiObjectRef& out) {
    forgetWhenIdle();
    std::vector<AtspiObjectRef> level{application};
    for (int depth = 0; depth <= maxMenuBarDepth && !level.empty(); ++depth) {
        learn(level);
        if (stopped_.contains(application.service)) {
            return ax::cannotComplete;
        }
        std::vector<AtspiObjectRef> next;
        for (const auto& object : level) {
            const Facts& known = known_[Key{object.service, object.path}];
            if (depth == 0 && known.childrenError != ax::success) {
                return known.childrenError;
            }
            if (depth > 0 && known.roleError == ax::success && known.role == atspiRole::menuBar) {
                out = object;
                return ax::success;
            }
            for (const auto& child : known.children) {
                if (next.size() < maxMenuBarBreadth) {
                    next.push_back(child);
                }
            }
        }
        level = std::move(next);
    }
    return failureCode(atspiFailure::noMenuBar);
}

} // namespace hg
