#include "backends/macos/MacAccessibility.hpp"

#include "backends/macos/CFRef.hpp"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg {
namespace {

TEST(CFRefTest, ReleasesExactlyWhatItOwns) {
    CFMutableArrayRef array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    const auto owner = CFRef<CFMutableArrayRef>::adopt(array);
    EXPECT_EQ(CFGetRetainCount(array), 1);
    {
        auto lent = CFRef<CFMutableArrayRef>::retain(array);
        const CFRef<CFMutableArrayRef> moved = std::move(lent);
        EXPECT_EQ(CFGetRetainCount(array), 2);
    }
    EXPECT_EQ(CFGetRetainCount(array), 1);
}

// This program's own application element, read through the system. Without
// Accessibility trust (or where the system cannot answer a process that runs
// no event loop) the reads fail as a whole, and the test is skipped.
TEST(MacAccessibilityTest, ConvertsTheValuesOfThisProgramsApplicationElement) {
    [NSApplication sharedApplication];
    MacAccessibility accessibility;
    const AXElementRef application = accessibility.createApplication(getpid());

    const AXCopyResult role = accessibility.copyAttributeValue(application, "AXRole");
    if (role.error == ax::apiDisabled || role.error == ax::cannotComplete) {
        GTEST_SKIP() << "the system refuses Accessibility reads here (" << role.error << ")";
    }
    ASSERT_EQ(role.error, ax::success);
    EXPECT_EQ(std::get<std::string>(role.value), "AXApplication");

    // A list of elements (empty without windows) or a failure without a value.
    const AXCopyResult windows = accessibility.copyAttributeValue(application, "AXWindows");
    if (windows.error == ax::success) {
        EXPECT_TRUE(std::holds_alternative<std::vector<AXElementRef>>(windows.value));
    } else {
        EXPECT_TRUE(std::holds_alternative<std::monostate>(windows.value));
    }
    // A boolean is of no kind the port carries.
    const AXCopyResult frontmost = accessibility.copyAttributeValue(application, "AXFrontmost");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(frontmost.value));
}

} // namespace
} // namespace hg
