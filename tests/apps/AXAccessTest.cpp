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

struct ErrorTextRow {
    AXError code;
    const char* menuBarChildren;
    const char* title;
    const char* press;
};

// One row per code of the platform's list, and one beyond it.
const std::vector<ErrorTextRow> errorTexts = {
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

TEST(AXAccessErrors, MenuBarReadPrintsItsTextAndRaisesTheCode) {
    for (const auto& row : errorTexts) {
        ZoomTree z;
        AXAccess access(z.ax, z.apps, z.out);
        z.ax.fail(AXOp::menubar, row.code);
        EXPECT_EQ(raisedCode([&] { (void)access.copyMenuBar(ZoomTree::pid); }), row.code);
        EXPECT_EQ(z.out.lines(), Lines{row.menuBarChildren}) << row.code;
    }
}

TEST(AXAccessErrors, ChildrenReadPrintsNodiceThenItsTextAndRaisesTheCode) {
    for (const auto& row : errorTexts) {
        ZoomTree z;
        AXAccess access(z.ax, z.apps, z.out);
        z.ax.fail(AXOp::children, row.code);
        EXPECT_EQ(raisedCode([&] { (void)access.findChild(z.menuBar, "Meeting", false); }),
                  row.code);
        EXPECT_EQ(z.out.lines(), (Lines{"NODICE", row.menuBarChildren})) << row.code;
    }
}

TEST(AXAccessErrors, TitleReadPrintsItsTextAndRaisesExceptForUnsupported) {
    for (const auto& row : errorTexts) {
        ZoomTree z;
        AXAccess access(z.ax, z.apps, z.out);
        z.ax.fail(AXOp::title, row.code);
        const AXError raised =
            raisedCode([&] { (void)access.findChild(z.menuBar, "Window", false); });
        if (row.code == ax::attributeUnsupported) {
            // Descends into the first item instead, whose titles fail alike,
            // down to the menu items, which have no children.
            EXPECT_EQ(raised, ax::success);
            EXPECT_EQ(z.out.lines(), (Lines{row.title, row.title}));
        } else {
            EXPECT_EQ(raised, row.code);
            EXPECT_EQ(z.out.lines(), Lines{row.title}) << row.code;
        }
    }
}

TEST(AXAccessErrors, PressPrintsItsTextAndRaisesExceptForUnsupported) {
    for (const auto& row : errorTexts) {
        ZoomTree z;
        AXAccess access(z.ax, z.apps, z.out);
        z.ax.fail(AXOp::press, row.code);
        const AXError raised = raisedCode([&] { access.press(z.item("Minimize")); });
        EXPECT_EQ(raised, row.code == ax::actionUnsupported ? ax::success : row.code);
        EXPECT_EQ(z.out.lines(), Lines{row.press}) << row.code;
    }
}

TEST(AXAccess, RunningAppPIDTakesTheFirstExactBundleMatch) {
    ZoomTree z;
    z.apps.clear();
    z.apps.add(std::nullopt, 1);
    z.apps.add("US.ZOOM.XOS", 2);
    z.apps.add("us.zoom.xos", 3);
    z.apps.add("us.zoom.xos", 4);
    AXAccess access(z.ax, z.apps, z.out);
    EXPECT_EQ(access.runningAppPID("us.zoom.xos"), 3);
    EXPECT_EQ(access.runningAppPID("us.zoom"), std::nullopt);
    z.apps.clear();
    EXPECT_EQ(access.runningAppPID("us.zoom.xos"), std::nullopt);
    EXPECT_TRUE(z.out.lines().empty());
}

TEST(AXAccess, SearchDescendsIntoTheFirstMenuAndNotIntoLaterSiblings) {
    ZoomTree z;
    AXAccess access(z.ax, z.apps, z.out);
    const auto apple = z.item("Apple");
    // "Apple"'s only child is its menu: the search ends there.
    EXPECT_EQ(access.findChild(apple, "About This Mac", false), z.item("About This Mac"));
    EXPECT_EQ(access.findChild(apple, "Quit Zoom", false), nullptr);

    // A menu among other children: siblings after it are never looked at.
    auto parent = FakeAXElement::make("AXGroup", "g");
    parent->add("AXMenuItem", "Before");
    auto menu = parent->add("AXMenu", "m");
    menu->add("AXMenuItem", "Inside");
    parent->add("AXMenuItem", "After");
    z.ax.clearCalls();
    EXPECT_EQ(access.findChild(parent, "After", false), nullptr);
    EXPECT_EQ(access.findChild(parent, "Before", false), parent->children[0]);
    for (const auto& call : z.ax.calls()) {
        EXPECT_NE(call.title, "After");
    }
    EXPECT_TRUE(z.out.lines().empty());
}

TEST(AXAccess, LetterCaseMattersOnlyWithoutTheFlag) {
    struct Row {
        const char* wanted;
        bool caseInsensitive;
        bool found;
    };
    const std::vector<Row> rows = {
        {"Mute Audio", false, true},   {"mute audio", false, false}, {"mute audio", true, true},
        {"MUTE AUDIO", true, true},    {"Mute Audio ", true, false}, {"Mute", true, false},
        {"Unmute Audio", true, false},
    };
    for (const auto& row : rows) {
        ZoomTree z;
        z.meeting({"Mute Audio"});
        AXAccess access(z.ax, z.apps, z.out);
        const auto found = access.findChild(z.meetingItem, row.wanted, row.caseInsensitive);
        EXPECT_EQ(found != nullptr, row.found) << row.wanted << " " << row.caseInsensitive;
    }
}

TEST(AXAccess, ChildWithoutTitleIsSearchedExactlyAndEndsTheSearch) {
    ZoomTree z;
    AXAccess access(z.ax, z.apps, z.out);
    auto parent = FakeAXElement::make("AXGroup", "g");
    auto untitled = parent->add("AXGroup", std::nullopt);
    auto inner = untitled->add("AXMenuItem", "Mute Audio");
    parent->add("AXMenuItem", "mute audio");

    EXPECT_EQ(access.findChild(parent, "MUTE AUDIO", true), nullptr)
        << "inside the untitled child the comparison is exact; later siblings are not searched";
    EXPECT_EQ(z.out.take(), Lines{"I BET THIS DOESNT HAPPEN ANYMORE"});
    EXPECT_EQ(access.findChild(parent, "Mute Audio", true), inner);
}

TEST(AXAccess, EmptyChildrenAndFailedRoleReadsAreSilent) {
    ZoomTree z;
    AXAccess access(z.ax, z.apps, z.out);
    auto leaf = FakeAXElement::make("AXMenuItem", "x");
    EXPECT_EQ(access.findChild(leaf, "x", false), nullptr);

    auto parent = FakeAXElement::make("AXGroup", "g");
    auto noRole = parent->add(std::nullopt, "Target");
    EXPECT_EQ(access.findChild(parent, "Target", false), noRole);
    z.ax.fail(AXOp::role, ax::cannotComplete);
    EXPECT_EQ(access.findChild(z.menuBar, "Window", false), z.item("Window"));
    EXPECT_TRUE(z.out.lines().empty());
}

TEST(AXAccess, ValuesOfTheWrongKindCountAsFailures) {
    ZoomTree z;
    AXAccess access(z.ax, z.apps, z.out);

    z.application->rawValues[AXOp::menubar] = std::string("not an element");
    EXPECT_EQ(raisedCode([&] { (void)access.copyMenuBar(ZoomTree::pid); }), ax::failure);
    z.application->rawValues[AXOp::menubar] = AXElementRef();
    EXPECT_EQ(raisedCode([&] { (void)access.copyMenuBar(ZoomTree::pid); }), ax::failure);
    EXPECT_EQ(z.out.take(), (Lines{" FAILRE", " FAILRE"}));

    z.menuBar->rawValues[AXOp::children] = std::vector<AXElementRef>{AXElementRef()};
    EXPECT_EQ(raisedCode([&] { (void)access.findChild(z.menuBar, "Window", false); }), ax::failure);
    z.menuBar->rawValues[AXOp::children] = std::monostate{};
    EXPECT_EQ(raisedCode([&] { (void)access.findChild(z.menuBar, "Window", false); }), ax::failure);
    EXPECT_EQ(z.out.take(), (Lines{"NODICE", " FAILRE", "NODICE", " FAILRE"}));
    z.menuBar->rawValues.clear();

    // A role of the wrong kind is as silent as a failed role read.
    z.item("Apple")->rawValues[AXOp::role] = std::vector<AXElementRef>{};
    z.item("Apple")->rawValues[AXOp::title] = AXElementRef(FakeAXElement::make("AXMenu", "x"));
    EXPECT_EQ(raisedCode([&] { (void)access.findChild(z.menuBar, "Window", false); }), ax::failure);
    EXPECT_EQ(z.out.take(), Lines{" FAILRE"});
}

TEST(AXAccess, SearchOfATreeThatLoopsEnds) {
    ZoomTree z;
    AXAccess access(z.ax, z.apps, z.out);
    auto menu = FakeAXElement::make("AXMenu", "loop");
    menu->children.push_back(menu);
    EXPECT_EQ(access.findChild(menu, "anything", true), nullptr);
    menu->children.clear(); // break the cycle so the test does not leak
}

TEST(AXAccess, ACopiedMenuBarIsTheApplicationsOwn) {
    ZoomTree z;
    AXAccess access(z.ax, z.apps, z.out);
    EXPECT_EQ(access.copyMenuBar(ZoomTree::pid), z.menuBar);
    // A process without an element behaves as one that has gone away.
    EXPECT_EQ(raisedCode([&] { (void)access.copyMenuBar(7); }), ax::invalidUIElement);
    EXPECT_EQ(z.out.lines(), Lines{"WTFMATE"});
}

} // namespace
} // namespace hg
