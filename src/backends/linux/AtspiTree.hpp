#pragma once

#include "backends/linux/AtspiBus.hpp"
#include "backends/linux/AtspiReplies.hpp"

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace hg {

// What one walk through an application's tree has learnt so far, so that a
// walk asks each object once and asks a whole level of the tree in one round
// trip: the role and children of every object on the way to the menu bar, and
// also the name and states of those whose titles are read, in one batch of
// requests sent together (the area, of menu items that are not visible, in
// a second).
//
// A walk is what happens between two calls of forget() (the backend forgets
// at the start of every application lookup and after every action); what it
// learnt is also forgotten when nothing was asked for a moment, so that a
// caller that never starts a new walk still sees the application change.
//
// An application that lets a request time out is taken as stopped for the
// rest of the walk: its further requests fail at once with the same code, so
// a stopped application costs one time-out per walk, not one per request.
class AtspiTree {
public:
    explicit AtspiTree(AtspiBus& bus);

    // Starts a new walk.
    void forget();

    // The children as the accessibility port presents them: menu items that
    // are hidden (neither visible nor of any size) are left out, and the
    // children of a menu bar are its top-level menus whatever their role.
    AXError children(const AtspiObjectRef& object, std::vector<AtspiObjectRef>& out);
    AXError role(const AtspiObjectRef& object, std::uint32_t& out);
    // The name without the padding some toolkits put around it.
    AXError name(const AtspiObjectRef& object, QString& out);
    // The menu bar of an application: among the menu bars of all its
    // windows on the shallowest level that has one (searched breadth-first to
    // a bounded depth), the first that is showing and has a size, else the
    // first found. When several are showing, the one returned lists the
    // menus of all of them (a hidden twin is never among them). What is
    // found is remembered across walks and only confirmed the next time,
    // while the bars are still menu bars showing with a size and the
    // application's windows are the same; one that was chosen without
    // showing is searched for again after a few seconds.
    AXError menuBar(const AtspiObjectRef& application, AtspiObjectRef& out);

private:
    using Key = std::pair<QString, QString>; // service, path

    // What is asked of an object: its role and children; its name and
    // states; its area.
    enum Need : unsigned { needShape = 1, needDetail = 2, needArea = 4 };
    enum Ask { askRole, askChildren, askName, askStates, askArea };

    struct Facts {
        unsigned asked = 0; // Need bits
        AXError roleError = ax::success;
        std::uint32_t role = 0;
        AXError nameError = ax::success;
        QString name;
        AXError childrenError = ax::success;
        std::vector<AtspiObjectRef> children;
        std::optional<QList<std::uint32_t>> states;
        std::optional<bool> hasArea;
    };

    struct Wanted {
        AtspiObjectRef object;
        unsigned need;
    };
    // Asks what is not known yet of `objects`, in one round trip.
    void learn(const std::vector<AtspiObjectRef>& objects, unsigned need);
    void learn(const std::vector<Wanted>& wanted);
    Facts& facts(const AtspiObjectRef& object, unsigned need);
    void store(const Key& key, Ask ask, const AtspiReply& reply);
    [[nodiscard]] bool hidden(const Facts& facts) const;
    // A menu entry not visible: hidden or in a closed menu.
    [[nodiscard]] bool mayBeHidden(const Facts& facts) const;
    // Showing, with a known area: a menu bar the user can see.
    [[nodiscard]] static bool onScreen(const Facts& facts);
    void forgetWhenIdle();

    AtspiBus& bus_;
    std::map<Key, Facts> known_;
    // Applications that let a request time out during this walk.
    std::set<QString> stopped_;
    std::chrono::steady_clock::time_point lastUse_{};
    // Objects listed under a menu bar: its top-level menus. Kept across
    // walks, so that such a menu found again later is still one.
    std::set<Key> topLevel_;
    // The menu bar found last, by application, with its entries when last
    // listed.
    struct RememberedBar {
        AtspiObjectRef bar;
        // The other bars on screen, whose menus the bar lists too.
        std::vector<AtspiObjectRef> others;
        std::vector<AtspiObjectRef> entries;
        // The application's windows when the bars were found.
        std::vector<AtspiObjectRef> windows;
        bool showing = false; // on screen when chosen
        std::chrono::steady_clock::time_point chosenAt{};
    };
    AXError searchMenuBar(const AtspiObjectRef& application, RememberedBar& out);
    std::map<QString, RememberedBar> menuBars_;
    std::uint64_t rememberedGeneration_ = 0;
};

} // namespace hg
