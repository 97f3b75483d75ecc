#include "backends/macos/MacKeyboardLayout.hpp"

#include "backends/macos/CFRef.hpp"

#import <Carbon/Carbon.h>
#import <Foundation/Foundation.h>

namespace hg {

std::optional<std::string> MacKeyboardLayout::displayText(std::uint16_t keyCode) const {
    // The keyboard layout in use, also under an input method (Japanese,
    // Chinese), whose own input source carries no layout data.
    const auto source = CFRef<TISInputSourceRef>::adopt(TISCopyCurrentKeyboardLayoutInputSource());
    if (!source) {
        return std::nullopt;
    }
    // Owned by the input source, which outlives its use here.
    const auto layoutData =
        (CFDataRef)TISGetInputSourceProperty(source.get(), kTISPropertyUnicodeKeyLayoutData);
    if (layoutData == nullptr) {
        return std::nullopt;
    }
    const auto* layout = reinterpret_cast<const UCKeyboardLayout*>(CFDataGetBytePtr(layoutData));

    UInt32 deadKeyState = 0;
    UniChar characters[4] = {};
    UniCharCount length = 0;
    // A failure leaves the length at 0, which is all that is looked at.
    UCKeyTranslate(layout, keyCode, kUCKeyActionDisplay, 0, LMGetKbdType(), 0, &deadKeyState, 4,
                   &length, characters);
    if (length < 1) {
        return std::nullopt;
    }
    @autoreleasepool {
        NSString* text = [NSString stringWithCharacters:characters length:length].uppercaseString;
        const char* utf8 = text.UTF8String;
        if (utf8 == nullptr) {
            return std::nullopt;
        }
        return std::string(utf8);
    }
}

bool MacKeyboardLayout::systemActsOnFunctionKey() const {
    const auto usage = CFRef<CFTypeRef>::adopt(
        CFPreferencesCopyAppValue(CFSTR("AppleFnUsageType"), CFSTR("com.apple.HIToolbox")));
    if (!usage || CFGetTypeID(usage.get()) != CFNumberGetTypeID()) {
        return true;
    }
    int value = 0;
    if (!CFNumberGetValue((CFNumberRef)usage.get(), kCFNumberIntType, &value)) {
        return true;
    }
    return value != 0; // 0: Do Nothing
}

} // namespace hg
