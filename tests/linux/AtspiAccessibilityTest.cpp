// What only the real backend has: roles, attributes and failures of the bus,
// read from the fixture application on the private desktop.

#include "platform/linux/AtspiAccessibility.hpp"

#include "FixtureApp.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeRunningApplications.hpp"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg::test {
namespace {

using ::testing::ElementsAre;

class AtspiAccessibilityTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string whyNot;
        app_ = FixtureApp::start(ax_, whyNot);
        if (!app_) {
            GTEST_SKIP() << "AT-SPI backend not testable here: " << whyNot;
        }
    }

    std::string role(const AXElementRef& element) {
        const auto result = ax_.copyAttributeValue(element, "AXRole");
        const auto* text = std::get_if<std::string>(&result.value);
        return text != nullptr ? *text : "read failed with " + std::to_string(result.error);
    }

    AtspiAccessibility ax_{AtspiAccessibility::Options{.alwaysOn = true}};
    std::unique_ptr<FixtureApp> app_;
    FakeRunningApplications apps_;
    BufferLineSink out_;
    AXAccess access_{ax_, apps_, out_};
};

TEST_F(AtspiAccessibilityTest, NamesRolesAfterTheirAtspiRolesAndMenusAsAXMenu) {
    app_->command("join");
    const AXElementRef application = ax_.createApplication(app_->pid());
    EXPECT_EQ(role(application), "AXApplication");
    const AXElementRef menuBar = access_.copyMenuBar(app_->pid());
    EXPECT_EQ(role(menuBar), "AXMenuBar");
    const AXElementRef meeting = access_.findChild(menuBar, "Meeting", false);
    ASSERT_NE(meeting, nullptr);
    EXPECT_EQ(role(meeting), "AXMenuItem");

    const auto popup = ax_.copyAttributeValue(meeting, "AXChildren");
    const auto* children = std::get_if<std::vector<AXElementRef>>(&popup.value);
    ASSERT_NE(children, nullptr);
    ASSERT_EQ(children->size(), 1U);
    EXPECT_EQ(role(children->front()), "AXMenu");

    const auto frames = ax_.copyAttributeValue(application, "AXChildren");
    const auto* windows = std::get_if<std::vector<AXElementRef>>(&frames.value);
    ASSERT_NE(windows, nullptr);
    ASSERT_FALSE(windows->empty());
    EXPECT_EQ(role(windows->front()), "AXFrame");
    const auto title = ax_.copyAttributeValue(windows->front(), "AXTitle");
    EXPECT_EQ(std::get<std::string>(title.value), "Meeting fixture");
}

TEST_F(AtspiAccessibilityTest,
       AnElementWithoutActionCountsAsPressedAndOtherAttributesAreUnsupported) {
    const AXElementRef menuBar = access_.copyMenuBar(app_->pid());
    EXPECT_NO_THROW(access_.press(menuBar));
    EXPECT_THAT(out_.take(), ElementsAre("UNSUPPORTED"));
    EXPECT_EQ(ax_.performAction(menuBar, "AXShowMenu"), ax::actionUnsupported);
    EXPECT_EQ(ax_.copyAttributeValue(menuBar, "AXSize").error, ax::attributeUnsupported);
}

TEST_F(AtspiAccessibilityTest, AProcessWithoutAnAccessibleApplicationHasAnInvalidElement) {
    try {
        (void)access_.copyMenuBar(static_cast<ProcessId>(::getpid()));
        ADD_FAILURE() << "the test process has no accessible application";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::invalidUIElement);
    }
    EXPECT_THAT(out_.take(), ElementsAre("WTFMATE"));
}

TEST_F(AtspiAccessibilityTest, AnUnreachableBusIsDisabledAccessibility) {
    ::setenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent/hg-a11y-bus", 1);
    AtspiAccessibility cut(AtspiAccessibility::Options{.alwaysOn = true});
    AXAccess access(cut, apps_, out_);
    EXPECT_FALSE(cut.isProcessTrusted(false));
    try {
        (void)access.copyMenuBar(app_->pid());
        ADD_FAILURE() << "read through a bus that is not there";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::apiDisabled);
    }
    EXPECT_TRUE(cut.registeredProcessIds().empty());
    ::unsetenv("AT_SPI_BUS_ADDRESS");
    EXPECT_THAT(out_.take(), ElementsAre("DISABELD"));
}

TEST_F(AtspiAccessibilityTest, ElementsOfOtherKindsAreIllegalArguments) {
    const auto foreign = std::make_shared<AXElement>();
    EXPECT_EQ(ax_.copyAttributeValue(foreign, "AXTitle").error, ax::illegalArgument);
    EXPECT_EQ(ax_.performAction(foreign, "AXPress"), ax::illegalArgument);
}

} // namespace
} // namespace hg::test
