// What only the real backend has: roles and attributes read from the fixture
// application on the private desktop, and trust, which follows the desktop's
// accessibility switch (kept in memory there; each case still puts it back).

#include "platform/linux/AtspiAccessibility.hpp"

#include "DesktopSession.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/linux/AtspiBus.hpp"

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
        makeQtApplication();
        std::string whyNot;
        app_ = FixtureApp::start(ax_, whyNot);
        if (!app_) {
            GTEST_SKIP() << "AT-SPI backend not testable here: " << whyNot;
        }
    }

    std::string read(const AXElementRef& element, const char* attribute) {
        const auto result = ax_.copyAttributeValue(element, attribute);
        const auto* text = std::get_if<std::string>(&result.value);
        return text != nullptr ? *text : "read failed with " + std::to_string(result.error);
    }
    AXElementRef firstChild(const AXElementRef& element) {
        const auto result = ax_.copyAttributeValue(element, "AXChildren");
        const auto* children = std::get_if<std::vector<AXElementRef>>(&result.value);
        return children != nullptr && !children->empty() ? children->front() : nullptr;
    }

    AtspiAccessibility ax_{AtspiAccessibility::Options{.alwaysOn = true}};
    std::unique_ptr<FixtureApp> app_;
    FakeRunningApplications apps_;
    BufferLineSink out_;
    AXAccess access_{ax_, apps_, out_};
};

TEST_F(AtspiAccessibilityTest, NamesRolesAsTheMacDoesAndRefusesWhatItCannotDo) {
    app_->command("join");
    const AXElementRef application = ax_.createApplication(app_->pid());
    EXPECT_EQ(read(application, "AXRole"), "AXApplication");
    const AXElementRef window = firstChild(application);
    EXPECT_EQ(read(window, "AXRole"), "AXFrame");
    EXPECT_EQ(read(window, "AXTitle"), "Meeting fixture");
    const AXElementRef menuBar = access_.copyMenuBar(app_->pid());
    EXPECT_EQ(read(menuBar, "AXRole"), "AXMenuBar");
    const AXElementRef meeting = access_.findChild(menuBar, "Meeting", false);
    ASSERT_NE(meeting, nullptr);
    EXPECT_EQ(read(meeting, "AXRole"), "AXMenuItem");
    EXPECT_EQ(read(firstChild(meeting), "AXRole"), "AXMenu");

    // An element without an action counts as pressed.
    EXPECT_NO_THROW(access_.press(menuBar));
    EXPECT_THAT(out_.take(), ElementsAre("UNSUPPORTED"));
    EXPECT_EQ(ax_.performAction(menuBar, "AXShowMenu"), ax::actionUnsupported);
    EXPECT_EQ(ax_.copyAttributeValue(menuBar, "AXSize").error, ax::attributeUnsupported);
    const auto foreign = std::make_shared<AXElement>();
    EXPECT_EQ(ax_.copyAttributeValue(foreign, "AXTitle").error, ax::illegalArgument);
    EXPECT_EQ(ax_.performAction(foreign, "AXPress"), ax::illegalArgument);
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

class AtspiTrust : public ::testing::Test {
protected:
    void SetUp() override {
        if (DesktopSession::shared() == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        makeQtApplication();
        before_ = switch_.isEnabled();
        if (!before_) {
            GTEST_SKIP() << "the accessibility bus launcher (at-spi2-core) does not answer";
        }
        ASSERT_TRUE(switch_.setEnabled(false));
    }
    void TearDown() override {
        if (before_) {
            EXPECT_TRUE(switch_.setEnabled(*before_));
            EXPECT_EQ(switch_.isEnabled(), before_);
        }
    }

    AtspiBus switch_;
    std::optional<bool> before_;
};

TEST_F(AtspiTrust, FollowsTheDesktopSwitchAndOnlyThePromptTurnsItOn) {
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = false});
    EXPECT_FALSE(ax.isProcessTrusted(false));
    EXPECT_EQ(switch_.isEnabled(), false) << "asking without a prompt changed the switch";

    // Like the permission dialog, the prompt's answer is the one from before it.
    EXPECT_FALSE(ax.isProcessTrusted(true));
    EXPECT_EQ(switch_.isEnabled(), true);
    EXPECT_TRUE(ax.isProcessTrusted(false));

    ASSERT_TRUE(switch_.setEnabled(false));
    EXPECT_FALSE(ax.isProcessTrusted(false));
}

TEST_F(AtspiTrust, AlwaysOnApplicationsNeedNoSwitch) {
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    EXPECT_TRUE(ax.isProcessTrusted(false));
    EXPECT_TRUE(ax.isProcessTrusted(true));
    EXPECT_EQ(switch_.isEnabled(), false) << "a trusted process prompted anyway";
}

TEST_F(AtspiTrust, AnUnreachableBusIsDisabledAccessibilityAndNeverPrompts) {
    ::setenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent/hg-a11y-bus", 1);
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    FakeRunningApplications apps;
    BufferLineSink out;
    AXAccess access(ax, apps, out);
    EXPECT_FALSE(ax.isProcessTrusted(true));
    try {
        (void)access.copyMenuBar(static_cast<ProcessId>(::getpid()));
        ADD_FAILURE() << "read through a bus that is not there";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::apiDisabled);
    }
    EXPECT_TRUE(ax.registeredProcessIds().empty());
    ::unsetenv("AT_SPI_BUS_ADDRESS");
    EXPECT_THAT(out.take(), ElementsAre("DISABELD"));
    EXPECT_EQ(switch_.isEnabled(), false);
}

} // namespace
} // namespace hg::test
