#include "backends/macos/CFRef.hpp"
#include "backends/macos/MacEventTap.hpp"
#include "backends/macos/MacKeyboardLayout.hpp"
#include "hotkey/Hotkey.hpp"

#import <ApplicationServices/ApplicationServices.h>
#import <Carbon/Carbon.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <utility>

namespace hg {
namespace {

// The monitor compares stored AppKit modifier bits with Core Graphics event
// flags directly; this holds only while both name the same bits.
TEST(MacEventTapTest, ReadsTheKeyboardFieldsOfAnEvent) {
    const auto event = CFRef<CGEventRef>::adopt(CGEventCreateKeyboardEvent(nullptr, 40, true));
    ASSERT_TRUE(event);
    CGEventSetFlags(event.get(), kCGEventFlagMaskControl | kCGEventFlagMaskCommand);
    CGEventSetIntegerValueField(event.get(), kCGKeyboardEventAutorepeat, 1);

    const TapEvent down = tapEventFromCGEvent(kCGEventKeyDown, event.get());
    EXPECT_EQ(down.type, tapevent::keyDown);
    EXPECT_EQ(down.keyCode, 40);
    EXPECT_EQ(down.flags & Hotkey::significantMask, modifier::control | modifier::command);
    EXPECT_EQ(down.autorepeat, 1);

    const TapEvent disabled = tapEventFromCGEvent(kCGEventTapDisabledByTimeout, event.get());
    EXPECT_EQ(disabled.type, tapevent::disabledByTimeout);
    EXPECT_EQ(disabled.keyCode, 0);
}

// AppKit and Core Graphics flag every arrow and navigation key with fn; only
// function keys keep the flag as a modifier.
TEST(MacEventTapTest, TheFunctionFlagOfNavigationKeysIsNoModifier) {
    for (const auto& [keyCode, keepsFn] :
         {std::pair{124, false}, std::pair{115, false}, std::pair{117, false}, std::pair{105, true},
          std::pair{122, true}}) {
        SCOPED_TRACE(keyCode);
        const auto event = CFRef<CGEventRef>::adopt(
            CGEventCreateKeyboardEvent(nullptr, static_cast<CGKeyCode>(keyCode), true));
        ASSERT_TRUE(event);
        CGEventSetFlags(event.get(), kCGEventFlagMaskSecondaryFn | kCGEventFlagMaskShift);
        const TapEvent down = tapEventFromCGEvent(kCGEventKeyDown, event.get());
        EXPECT_EQ(down.flags & Hotkey::significantMask,
                  modifier::shift | (keepsFn ? modifier::function : 0));
    }
}

TEST(MacKeyboardLayoutTest, NamesKeysOnTheUSLayout) {
    const auto source = CFRef<TISInputSourceRef>::adopt(TISCopyCurrentKeyboardLayoutInputSource());
    NSString* name =
        source
            ? (__bridge NSString*)TISGetInputSourceProperty(source.get(), kTISPropertyInputSourceID)
            : nil;
    if (!([name isEqualToString:@"com.apple.keylayout.US"] ||
          [name isEqualToString:@"com.apple.keylayout.ABC"])) {
        GTEST_SKIP() << "the current input source is not the US layout";
    }
    const MacKeyboardLayout layout;
    EXPECT_EQ(layout.displayText(0), "A");
    EXPECT_EQ((Hotkey{40, modifier::control | modifier::command}.displayString(&layout)),
              "\u2303\u2318K");
}

} // namespace
} // namespace hg
