#pragma once

#include <type_traits>
#include <utility>

// Core Foundation's own declarations, repeated so that this header stays plain
// C++: CFTypeRef is const void*, and both have C linkage in CoreFoundation.
extern "C" void CFRelease(const void* cf);
extern "C" const void* CFRetain(const void* cf);

namespace hg {

// Owns one Core Foundation reference (CFStringRef, AXUIElementRef,
// CFMachPortRef...) and releases it when it goes. Move-only: one owner per
// reference the code holds.
//
// adopt() takes a reference the caller already owns (one from a Create or
// Copy function); retain() takes one the caller was lent (a Get function) and
// retains it. A null reference is allowed everywhere and owns nothing.
template <typename T> class CFRef {
    static_assert(std::is_pointer_v<T>, "CFRef holds Core Foundation reference types");

public:
    CFRef() noexcept = default;
    ~CFRef() { reset(); }

    [[nodiscard]] static CFRef adopt(T ref) noexcept { return CFRef(ref); }
    [[nodiscard]] static CFRef retain(T ref) noexcept {
        if (ref != nullptr) {
            CFRetain(ref);
        }
        return CFRef(ref);
    }

    CFRef(CFRef&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
    CFRef& operator=(CFRef&& other) noexcept {
        if (this != &other) {
            reset(std::exchange(other.ref_, nullptr));
        }
        return *this;
    }
    CFRef(const CFRef&) = delete;
    CFRef& operator=(const CFRef&) = delete;

    [[nodiscard]] T get() const noexcept { return ref_; }
    explicit operator bool() const noexcept { return ref_ != nullptr; }

    // Releases what is held and adopts `ref` in its place.
    void reset(T ref = nullptr) noexcept {
        const T old = std::exchange(ref_, ref);
        if (old != nullptr) {
            CFRelease(old);
        }
    }

    // For Copy and Create functions that answer through an out-parameter:
    // releases what is held and lends the slot, whose content is then owned.
    [[nodiscard]] T* receive() noexcept {
        reset();
        return &ref_;
    }

private:
    explicit CFRef(T ref) noexcept : ref_(ref) {}

    T ref_ = nullptr;
};

} // namespace hg
