#include "backends/macos/MacAccessibility.hpp"

#include "backends/macos/CFRef.hpp"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

namespace hg {

namespace {

class MacAXElement final : public AXElement {
public:
    explicit MacAXElement(CFRef<AXUIElementRef> ref) : ref_(std::move(ref)) {}
    [[nodiscard]] AXUIElementRef get() const { return ref_.get(); }

private:
    CFRef<AXUIElementRef> ref_;
};

AXUIElementRef platformElement(const AXElementRef& element) {
    const auto* mac = dynamic_cast<const MacAXElement*>(element.get());
    return mac != nullptr ? mac->get() : nullptr;
}

// Attribute and action names are ASCII constants; a text that is not UTF-8
// gives a null string, which the caller refuses.
CFRef<CFStringRef> cfString(std::string_view text) {
    return CFRef<CFStringRef>::adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

// Every UTF-16 string has a UTF-8 form except for lone surrogates, which
// become '?' rather than emptying the whole text.
std::string utf8(CFStringRef string) {
    const CFRange range = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    CFStringGetBytes(string, range, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string out(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, range, kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(out.data()), size, nullptr);
    return out;
}

// How long one message to the other application may take, in seconds, instead
// of the system's default of about six: a toggle runs on the main thread, and
// keys typed meanwhile wait for it. A message that runs out fails with
// kAXErrorCannotComplete, passed on unchanged. A time-out holds only for the
// element it is set on, so the application element and every element read
// from it get one.
constexpr float messagingTimeout = 1.0F;

AXElementRef element(CFRef<AXUIElementRef> ref) {
    if (ref) {
        AXUIElementSetMessagingTimeout(ref.get(), messagingTimeout);
    }
    return std::make_shared<MacAXElement>(std::move(ref));
}

AXElementRef element(CFTypeRef value) {
    return element(CFRef<AXUIElementRef>::retain((AXUIElementRef)value));
}

AXValue convert(CFTypeRef value) {
    if (value == nullptr) {
        return std::monostate{};
    }
    const CFTypeID type = CFGetTypeID(value);
    if (type == AXUIElementGetTypeID()) {
        return element(value);
    }
    if (type == CFStringGetTypeID()) {
        return utf8((CFStringRef)value);
    }
    if (type == CFArrayGetTypeID()) {
        const auto array = (CFArrayRef)value;
        const CFIndex count = CFArrayGetCount(array);
        std::vector<AXElementRef> elements;
        elements.reserve(static_cast<std::size_t>(count));
        for (CFIndex i = 0; i < count; ++i) {
            const CFTypeRef item = CFArrayGetValueAtIndex(array, i);
            if (item == nullptr || CFGetTypeID(item) != AXUIElementGetTypeID()) {
                return std::monostate{};
            }
            elements.push_back(element(item));
        }
        return elements;
    }
    return std::monostate{};
}

} // namespace

bool MacAccessibility::isProcessTrusted(bool prompt) {
    NSDictionary* options =
        @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : prompt ? @YES : @NO};
    return AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
}

AXElementRef MacAccessibility::createApplication(ProcessId pid) {
    return element(CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid)));
}

AXCopyResult MacAccessibility::copyAttributeValue(const AXElementRef& element,
                                                  std::string_view attribute) {
    const AXUIElementRef target = platformElement(element);
    const CFRef<CFStringRef> name = cfString(attribute);
    if (target == nullptr || !name) {
        return {ax::illegalArgument, {}};
    }
    CFRef<CFTypeRef> value;
    const ::AXError error = AXUIElementCopyAttributeValue(target, name.get(), value.receive());
    if (error != kAXErrorSuccess) {
        return {error, {}};
    }
    return {ax::success, convert(value.get())};
}

AXError MacAccessibility::performAction(const AXElementRef& element, std::string_view action) {
    const AXUIElementRef target = platformElement(element);
    const CFRef<CFStringRef> name = cfString(action);
    if (target == nullptr || !name) {
        return ax::illegalArgument;
    }
    return AXUIElementPerformAction(target, name.get());
}

} // namespace hg
