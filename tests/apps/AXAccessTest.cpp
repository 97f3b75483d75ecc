#include "apps/AXAccess.hpp"

#include "ZoomTree.hpp"
#include "apps/SwiftAXError.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Lines = std::vector<std::string>;

// Runs `call`, expecting a SwiftAXError; returns its code (0 when none).
template <typename F> AXError raisedCode(F&& call) {
    try {
        call();
    } catch (const SwiftAXError& e) {
        EXPECT_STREQ(e.what(), "HushGremlin.SwiftAXError");
        return e.axErr;
    }
    return ax::success;
}

struct Access : ZoomTree {
    AXAccess access{ax, apps, out};
};

TEST(AXAccess, EachFailingCallPrintsTheTextOfItsColumnAndRaisesTheCode) {
    struct Row {
        AXError code;
        const char* menuBarChildren;
        const char* title;
        const char* press;
    };
    // One row per code of the platform's list, and two beyond it.
    const std::vector<Row> rows = {
        {-25200, " FAILRE", " FAILRE", " FAILRE"},
        {-25201, "WTFMATE", "ILLEgal ARg", "UNSUCCESS PRESSING"},
        {-25202, "WTFMATE", "INVALID ELEMENT", "UNSUCCESS PRESSING"},
        {-25203, "WTFMATE", "Bad OZBSECER", "UNSUCCESS PRESSING"},
        {-25204, "CANT COMplete", "CANT COMplete", "CANT COMplete"},
        {-25205, "ARTT UNSUB", "I BET THIS DOESNT HAPPEN ANYMORE", "ARTT UNSUB"},
        {-25206, "UNSUPPORTED", "UNSUPPORTED", "UNSUPPORTED"},
        {-25207, "WTFMATE", "BAD NOtificaiotn", "UNSUCCESS PRESSING"},
        {-25208, "WTFMATE", "NOT IMPLENETD", "UNSUCCESS PRESSING"},
        {-25209, "WTFMATE", "BAD NOtificaiotn ALREADY", "UNSUCCESS PRESSING"},
        {-25210, "WTFMATE", "BAD NOtificaiotn REGISTER", "UNSUCCESS PRESSING"},
        {-25211, "DISABELD", "DISABELD", "DISABELD"},
        {-25212, "WTFMATE", "NO VALUE", "UNSUCCESS PRESSING"},
        {-25213, "WTFMATE", "BAD PARAM", "UNSUCCESS PRESSING"},
        {-25214, "WTFMATE", "WTFMATE", "UNSUCCESS PRESSING"},
        {-1, "WTFMATE", "WTFMATE", "UNSUCCESS PRESSING"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        Access a;
        a.ax.setTrusted(false); // an injected failure wins over missing trust
        a.ax.fail(AXOp::menubar, row.code);
        EXPECT_EQ(raisedCode([&] { (void)a.access.copyMenuBar(ZoomTree::pid); }), row.code);
        EXPECT_EQ(a.out.take(), Lines{row.menuBarChildren});
        a.ax.setTrusted(true);
        a.ax.heal();

        a.ax.fail(AXOp::children, row.code);
        EXPECT_EQ(raisedCode([&] { (void)a.access.findChild(a.menuBar, "Meeting", false); }),
                  row.code);
        EXPECT_EQ(a.out.take(), (Lines{"NODICE", row.menuBarChildren}));
        a.ax.heal();

        // Unsupported descends into the first item instead, whose titles fail
        // alike, down to the menu items, which have no children.
        a.ax.fail(AXOp::title, row.code);
        const bool descends = row.code == ax::attributeUnsupported;
        EXPECT_EQ(raisedCode([&] { (void)a.access.findChild(a.menuBar, "Window", false); }),
                  descends ? ax::success : row.code);
        EXPECT_EQ(a.out.take(), Lines(descends ? 2 : 1, row.title));
        a.ax.heal();

        a.ax.fail(AXOp::press, row.code);
        EXPECT_EQ(raisedCode([&] { a.access.press(a.item("Minimize")); }),
                  row.code == ax::actionUnsupported ? ax::success : row.code);
        EXPECT_EQ(a.out.take(), Lines{row.press});
    }
}

TEST(AXAccess, RunningAppPIDTakesTheFirstExactBundleMatch) {
    Access a;
    a.apps.clear();
    a.apps.add(std::nullopt, 1);
    a.apps.add("US.ZOOM.XOS", 2);
    a.apps.add("us.zoom.xos", 3);
    a.apps.add("us.zoom.xos", 4);
    EXPECT_EQ(a.access.runningAppPID("us.zoom.xos"), 3);
    EXPECT_TRUE(a.out.lines().empty());
}

TEST(AXAccess, SearchDescendsIntoTheFirstMenuAndNotIntoLaterSiblings) {
    Access a;
    auto parent = FakeAXElement::make("AXGroup", "g");
    parent->add(std::nullopt, "Before"); // no role: compared by title all the same
    auto inside = parent->add("AXMenu", "m")->add("AXMenuItem", "Inside");
    parent->add("AXMenuItem", "After");
    EXPECT_EQ(a.access.findChild(parent, "Inside", false), inside);
    EXPECT_EQ(a.access.findChild(parent, "After", false), nullptr);
    EXPECT_EQ(a.access.findChild(parent, "Before", false), parent->children[0]);
    for (const auto& call : a.ax.calls()) {
        EXPECT_NE(call.title, "After");
    }
    EXPECT_TRUE(a.out.lines().empty());

    auto loop = FakeAXElement::make("AXMenu", "loop");
    loop->children.push_back(loop);
    EXPECT_EQ(a.access.findChild(loop, "anything", true), nullptr) << "a tree that loops ends";
    loop->children.clear(); // break the cycle so the test does not leak
}

TEST(AXAccess, ChildWithoutTitleIsSearchedExactlyAndEndsTheSearch) {
    Access a;
    auto parent = FakeAXElement::make("AXGroup", "g");
    auto inner = parent->add("AXGroup", std::nullopt)->add("AXMenuItem", "Mute Audio");
    parent->add("AXMenuItem", "mute audio");

    EXPECT_EQ(a.access.findChild(parent, "MUTE AUDIO", true), nullptr)
        << "inside the untitled child the comparison is exact; later siblings are not searched";
    EXPECT_EQ(a.out.take(), Lines{"I BET THIS DOESNT HAPPEN ANYMORE"});
    EXPECT_EQ(a.access.findChild(parent, "Mute Audio", true), inner);
}

TEST(AXAccess, ValuesOfTheWrongKindCountAsFailures) {
    Access a;
    const auto menuBar = [&a] { return raisedCode([&a] { (void)a.access.copyMenuBar(a.pid); }); };
    const auto search = [&a] {
        return raisedCode([&a] { (void)a.access.findChild(a.menuBar, "Window", false); });
    };
    a.application->rawValues[AXOp::menubar] = std::string("not an element");
    EXPECT_EQ(menuBar(), ax::failure);
    a.application->rawValues[AXOp::menubar] = AXElementRef();
    EXPECT_EQ(menuBar(), ax::failure);
    EXPECT_EQ(a.out.take(), (Lines{" FAILRE", " FAILRE"}));

    a.menuBar->rawValues[AXOp::children] = std::vector<AXElementRef>{AXElementRef()};
    EXPECT_EQ(search(), ax::failure);
    EXPECT_EQ(a.out.take(), (Lines{"NODICE", " FAILRE"}));
    a.menuBar->rawValues.clear();

    // A role of the wrong kind is as silent as a failed role read.
    a.item("Apple")->rawValues[AXOp::role] = std::vector<AXElementRef>{};
    a.item("Apple")->rawValues[AXOp::title] = AXElementRef(FakeAXElement::make("AXMenu", "x"));
    EXPECT_EQ(search(), ax::failure);
    EXPECT_EQ(a.out.take(), Lines{" FAILRE"});
}

} // namespace
} // namespace hg
