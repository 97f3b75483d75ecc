#include "backends/linux/AtspiTree.hpp"

#include "backends/linux/AtspiErrors.hpp"
#include "backends/linux/AtspiNames.hpp"
#include "backends/linux/AtspiRoles.hpp"

#include <algorithm>

namespace hg {

namespace {

// ATSPI_COORD_TYPE_WINDOW: any frame of reference tells an empty area.
constexpr unsigned windowCoordinates = 1;

// Menu bars sit a few levels below their window (GTK nests them in boxes).
constexpr int maxMenuBarDepth = 6;
// Objects looked at on one level of that search.
constexpr std::size_t maxMenuBarBreadth = 64;
// Entries of one menu or menu bar that are read. Zoom's "Meeting" menu holds
// a dozen; a menu of thousands would take longer than the time-out to read,
// every time, and the ones after these are left unread.
constexpr std::size_t maxMenuEntries = 256;

// Menu bars compared in one search (an app may show one and keep a hidden
// twin; an application may have a window or two more).
constexpr std::size_t maxMenuBarCandidates = 8;
// A menu bar chosen while none was showing is looked for again after this
// long, so that one that shows up later is found.
constexpr std::chrono::seconds hiddenBarRecheck{5};

// Top-level menus and menu bars remembered across walks; an application has
// a dozen of the first and one of the second.
constexpr std::size_t maxRemembered = 256;

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
    if (rememberedGeneration_ != bus_.generation() || topLevel_.size() > maxRemembered ||
        menuBars_.size() > maxRemembered) {
        topLevel_.clear();
        menuBars_.clear();
        rememberedGeneration_ = bus_.generation();
    }
}

void AtspiTree::forgetWhenIdle() {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastUse_ > idleLimit) {
        forget();
    }
    lastUse_ = now;
}

void AtspiTree::learn(const std::vector<AtspiObjectRef>& objects, unsigned need) {
    std::vector<Wanted> wanted;
    wanted.reserve(objects.size());
    for (const auto& object : objects) {
        wanted.push_back({object, need});
    }
    learn(wanted);
}

void AtspiTree::learn(const std::vector<Wanted>& wanted) {
    struct Asked {
        Key key;
        Ask ask;
    };
    std::vector<Asked> asked;
    std::vector<AtspiRequest> requests;
    for (const auto& [object, need] : wanted) {
        const Key key{object.service, object.path};
        Facts& facts = known_[key];
        const unsigned missing = need & ~facts.asked;
        facts.asked |= missing;
        if (missing == 0) {
            continue;
        }
        if (stopped_.contains(object.service)) {
            if ((missing & needShape) != 0) {
                facts.roleError = facts.childrenError = ax::cannotComplete;
            }
            if ((missing & needDetail) != 0) {
                facts.nameError = ax::cannotComplete;
            }
            continue;
        }
        const QString& service = object.service;
        const QString& path = object.path;
        const auto ask = [&](Ask what, AtspiRequest request) {
            asked.push_back({key, what});
            requests.push_back(std::move(request));
        };
        if ((missing & needShape) != 0) {
            ask(askRole,
                {service, path, atspiName::accessibleInterface, QStringLiteral("GetRole")});
            ask(askChildren,
                {service, path, atspiName::accessibleInterface, QStringLiteral("GetChildren")});
        }
        if ((missing & needDetail) != 0) {
            ask(askName, AtspiBus::propertyRequest(service, path, atspiName::accessibleInterface,
                                                   QStringLiteral("Name")));
            ask(askStates,
                {service, path, atspiName::accessibleInterface, QStringLiteral("GetState")});
        }
        if ((missing & needArea) != 0) {
            ask(askArea, {service,
                          path,
                          atspiName::componentInterface,
                          QStringLiteral("GetExtents"),
                          {QVariant(windowCoordinates)}});
        }
    }
    if (requests.empty()) {
        return;
    }
    const std::vector<AtspiReply> replies = bus_.callAll(requests);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        store(asked[i].key, asked[i].ask, replies[i]);
    }
    lastUse_ = std::chrono::steady_clock::now();
}

void AtspiTree::store(const Key& key, Ask ask, const AtspiReply& reply) {
    Facts& facts = known_[key];
    const AXError badReply = failureCode(atspiFailure::badReply);
    if (reply.error == ax::cannotComplete) {
        stopped_.insert(key.first);
    }
    // The one argument of a successful reply, or none.
    const auto single = [](const AtspiReply& answer) -> const QVariant* {
        return answer.error == ax::success && answer.arguments.size() == 1
                   ? &answer.arguments.front()
                   : nullptr;
    };
    switch (ask) {
    case askRole:
        facts.roleError = reply.error;
        if (const QVariant* value = single(reply); value != nullptr) {
            facts.roleError = value->typeId() == QMetaType::UInt ? ax::success : badReply;
            facts.role = value->toUInt();
        }
        break;
    case askName: {
        const AtspiReply name = AtspiBus::propertyValue(reply);
        facts.nameError = name.error;
        if (const QVariant* value = single(name); value != nullptr) {
            facts.nameError = value->typeId() == QMetaType::QString ? ax::success : badReply;
            facts.name = value->toString().trimmed();
        }
        break;
    }
    case askStates:
        if (const QVariant* value = single(reply); value != nullptr) {
            facts.states = readStateWords(*value);
        }
        break;
    case askArea:
        if (const QVariant* value = single(reply); value != nullptr) {
            facts.hasArea = readHasArea(*value);
        }
        break;
    case askChildren:
        facts.childrenError = reply.error;
        if (const QVariant* value = single(reply); value != nullptr) {
            const auto refs = readObjectRefs(*value);
            facts.childrenError = refs ? ax::success : badReply;
            if (refs) {
                facts.children.assign(refs->begin(), refs->end());
            }
            for (auto& child : facts.children) {
                // Some toolkits leave the bus name out for objects of their own.
                if (child.service.isEmpty()) {
                    child.service = key.first;
                }
            }
        }
        break;
    }
}

AtspiTree::Facts& AtspiTree::facts(const AtspiObjectRef& object, unsigned need) {
    learn({object}, need);
    return known_[Key{object.service, object.path}];
}

bool AtspiTree::hidden(const Facts& facts) const {
    return facts.roleError == ax::success && isMenuEntry(facts.role) && facts.states &&
           isOutOfSight(*facts.states, facts.hasArea);
}

bool AtspiTree::onScreen(const Facts& facts) {
    return facts.states && hasState(*facts.states, atspiState::showing) && facts.hasArea == true;
}

bool AtspiTree::mayBeHidden(const Facts& facts) const {
    return facts.roleError == ax::success && isMenuEntry(facts.role) && facts.states &&
           !hasState(*facts.states, atspiState::visible);
}

AXError AtspiTree::children(const AtspiObjectRef& object, std::vector<AtspiObjectRef>& out) {
    forgetWhenIdle();
    // The menu bar chosen for an application stands for the bars of all its
    // windows on screen, as one bar serves a whole application elsewhere: a
    // menu is found in whichever window holds it.
    const auto remembered = menuBars_.find(object.service);
    const bool merged = remembered != menuBars_.end() && remembered->second.bar.path == object.path;
    std::vector<AtspiObjectRef> bars{object};
    if (merged) {
        bars.insert(bars.end(), remembered->second.others.begin(), remembered->second.others.end());
    }
    learn(bars, needShape);
    const Facts& parent = known_[Key{object.service, object.path}];
    if (parent.childrenError != ax::success) {
        return parent.childrenError;
    }
    std::vector<AtspiObjectRef> listed = parent.children;
    for (std::size_t i = 1; i < bars.size(); ++i) {
        const Facts& other = known_[Key{bars[i].service, bars[i].path}];
        if (other.childrenError == ax::success) {
            listed.insert(listed.end(), other.children.begin(), other.children.end());
        }
    }
    const bool menuBar = parent.roleError == ax::success && parent.role == atspiRole::menuBar;
    const bool menu = parent.roleError == ax::success &&
                      (parent.role == atspiRole::menu || parent.role == atspiRole::popupMenu);
    if ((menu || menuBar) && listed.size() > maxMenuEntries) {
        listed.resize(maxMenuEntries);
    }
    // What a search reads of each child, with the children's own children
    // ahead of a search that goes down: one round trip a level. Qt's items of
    // a closed menu are not visible, and their area tells whether they are
    // hidden: for a menu's items it comes in the same round trip.
    learn(listed, needShape | needDetail | (menu ? needArea : 0U));
    std::vector<AtspiObjectRef> unclear;
    for (const auto& child : listed) {
        if (mayBeHidden(known_[Key{child.service, child.path}])) {
            unclear.push_back(child);
        }
    }
    learn(unclear, needArea);
    out.clear();
    if (menuBar && merged) {
        remembered->second.entries = listed;
    }
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
    const Facts& known = facts(object, needShape);
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
    const Facts& known = facts(object, needDetail);
    if (known.nameError == ax::success) {
        out = known.name;
    }
    return known.nameError;
}

AXError AtspiTree::menuBar(const AtspiObjectRef& application, AtspiObjectRef& out) {
    forgetWhenIdle();
    const auto now = std::chrono::steady_clock::now();
    if (const auto known = menuBars_.find(application.service); known != menuBars_.end()) {
        // The bar's entries of last time are asked for along with the bar:
        // while they stay the same, a reading of the bar takes one round trip.
        // The application's windows are asked too: a window that opens or
        // closes may bring or take a menu bar, and the bars are searched for
        // again.
        const RememberedBar& remembered = known->second;
        std::vector<Wanted> wanted{{remembered.bar, needShape | needDetail | needArea},
                                   {application, needShape}};
        for (const auto& other : remembered.others) {
            wanted.push_back({other, needShape | needDetail | needArea});
        }
        for (const auto& entry : remembered.entries) {
            wanted.push_back({entry, needShape | needDetail});
        }
        learn(wanted);
        const Facts& bar = known_[Key{remembered.bar.service, remembered.bar.path}];
        const Facts& root = known_[Key{application.service, application.path}];
        const bool sameWindows =
            root.childrenError != ax::success || root.children == remembered.windows;
        const bool othersShowing =
            std::all_of(remembered.others.begin(), remembered.others.end(), [this](const auto& o) {
                return onScreen(known_[Key{o.service, o.path}]);
            });
        // One that stopped showing is searched for again at once; one that
        // never showed, now and then.
        const bool keep = sameWindows && othersShowing &&
                          (onScreen(bar) ||
                           (!remembered.showing && now - remembered.chosenAt < hiddenBarRecheck));
        if (bar.roleError == ax::success && bar.role == atspiRole::menuBar && keep) {
            known->second.showing = onScreen(bar);
            out = remembered.bar;
            return ax::success;
        }
        menuBars_.erase(known);
        if (stopped_.contains(application.service)) {
            return ax::cannotComplete;
        }
    }
    RememberedBar found;
    const AXError code = searchMenuBar(application, found);
    if (code == ax::success) {
        found.chosenAt = now;
        out = found.bar;
        menuBars_[application.service] = std::move(found);
    }
    return code;
}

AXError AtspiTree::searchMenuBar(const AtspiObjectRef& application, RememberedBar& out) {
    std::vector<AtspiObjectRef> found;
    std::vector<AtspiObjectRef> level{application};
    // The shallowest level that holds a menu bar holds the candidates, in
    // every window: deeper levels are not searched.
    for (int depth = 0; depth <= maxMenuBarDepth && !level.empty() && found.empty(); ++depth) {
        learn(level, needShape);
        if (stopped_.contains(application.service)) {
            return ax::cannotComplete;
        }
        std::vector<AtspiObjectRef> next;
        for (const auto& object : level) {
            const Facts& known = known_[Key{object.service, object.path}];
            if (depth == 0 && known.childrenError != ax::success) {
                return known.childrenError;
            }
            if (depth == 0) {
                out.windows = known.children;
            }
            const bool shaped = depth > 0 && known.roleError == ax::success;
            if (shaped && known.role == atspiRole::menuBar) {
                if (found.size() < maxMenuBarCandidates) {
                    found.push_back(object);
                }
                continue;
            }
            // Menus hold items, not menu bars, and may hold thousands.
            if (shaped && (known.role == atspiRole::menu || known.role == atspiRole::popupMenu)) {
                continue;
            }
            for (const auto& child : known.children) {
                if (next.size() < maxMenuBarBreadth) {
                    next.push_back(child);
                }
            }
        }
        level = std::move(next);
    }
    if (found.empty()) {
        return failureCode(atspiFailure::noMenuBar);
    }
    // The only one needs no comparing: whether it shows is learnt when it is
    // confirmed next time, in the same round trip.
    if (found.size() == 1) {
        out.bar = found.front();
        out.showing = false;
        return ax::success;
    }
    learn(found, needDetail | needArea);
    if (stopped_.contains(application.service)) {
        return ax::cannotComplete;
    }
    std::vector<AtspiObjectRef> showing;
    std::copy_if(found.begin(), found.end(), std::back_inserter(showing), [this](const auto& bar) {
        return onScreen(known_[Key{bar.service, bar.path}]);
    });
    out.showing = !showing.empty();
    out.bar = out.showing ? showing.front() : found.front();
    if (showing.size() > 1) {
        out.others.assign(showing.begin() + 1, showing.end());
    }
    return ax::success;
}

} // namespace hg
