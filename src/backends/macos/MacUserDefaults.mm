#include "backends/macos/MacUserDefaults.hpp"

#import <Foundation/Foundation.h>

namespace hg {

struct MacUserDefaults::Impl {
    // nil when the suite name is one NSUserDefaults refuses (the main
    // bundle's identifier, NSGlobalDomain): then nothing reads or writes.
    NSUserDefaults* defaults = nil;
};

namespace {

NSString* string(std::string_view text) {
    return [[NSString alloc] initWithBytes:text.data()
                                    length:text.size()
                                  encoding:NSUTF8StringEncoding];
}

DefaultsValue fromObject(id object) {
    if ([object isKindOfClass:NSNumber.class]) {
        NSNumber* number = object;
        if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID()) {
            return static_cast<bool>(number.boolValue);
        }
        if (CFNumberIsFloatType((__bridge CFNumberRef)number)) {
            return number.doubleValue;
        }
        return static_cast<std::int64_t>(number.longLongValue);
    }
    if ([object isKindOfClass:NSString.class]) {
        const char* utf8 = static_cast<NSString*>(object).UTF8String;
        return std::string(utf8 != nullptr ? utf8 : "");
    }
    if ([object isKindOfClass:NSData.class]) {
        NSData* data = object;
        const auto* bytes = static_cast<const std::uint8_t*>(data.bytes);
        return Bytes(bytes, bytes + data.length);
    }
    // Present but of no kind the port carries (array, dictionary, date):
    // the integer 0 answers like NSUserDefaults does for it, with boolForKey
    // false and dataForKey nothing.
    return std::int64_t{0};
}

id toObject(const DefaultsValue& value) {
    return std::visit(
        [](const auto& v) -> id {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, bool>) {
                return v ? @YES : @NO;
            } else if constexpr (std::is_same_v<T, std::int64_t>) {
                return @(static_cast<long long>(v));
            } else if constexpr (std::is_same_v<T, double>) {
                return @(v);
            } else if constexpr (std::is_same_v<T, std::string>) {
                return string(v);
            } else {
                return [NSData dataWithBytes:v.data() length:v.size()];
            }
        },
        value);
}

} // namespace

MacUserDefaults::MacUserDefaults(std::string suiteName) : impl_(std::make_unique<Impl>()) {
    impl_->defaults = suiteName.empty()
                          ? NSUserDefaults.standardUserDefaults
                          : [[NSUserDefaults alloc] initWithSuiteName:string(suiteName)];
}

MacUserDefaults::~MacUserDefaults() = default;

std::optional<DefaultsValue> MacUserDefaults::objectForKey(std::string_view key) const {
    @autoreleasepool {
        NSString* name = string(key);
        id stored = name != nil ? [impl_->defaults objectForKey:name] : nil;
        if (stored == nil) {
            return std::nullopt;
        }
        return fromObject(stored);
    }
}

void MacUserDefaults::setObject(std::string_view key, const DefaultsValue& value) {
    @autoreleasepool {
        NSString* name = string(key);
        id stored = toObject(value);
        if (name != nil && stored != nil) {
            [impl_->defaults setObject:stored forKey:name];
        }
    }
}

void MacUserDefaults::removeObject(std::string_view key) {
    @autoreleasepool {
        if (NSString* name = string(key)) {
            [impl_->defaults removeObjectForKey:name];
        }
    }
}

} // namespace hg
