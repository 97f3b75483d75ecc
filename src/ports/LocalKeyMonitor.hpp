#pragma once

#include <cstdint>
#include <functional>

namespace hg {

// A key event that reaches this application (not system-wide).
struct LocalKeyEvent {
    enum class Type : std::uint8_t { keyDown, flagsChanged };
    Type type = Type::keyDown;
    std::uint16_t keyCode = 0;     // macOS virtual key code
    std::uint64_t modifiers = 0;   // modifier flags after the event (0x20000 shift ... 0x800000 fn)
};

// Sees key-down and flags-changed events before this application's windows do.
class LocalKeyMonitor {
public:
    // Returns true to consume the event.
    using Handler = std::function<bool(const LocalKeyEvent&)>;

    virtual ~LocalKeyMonitor() = default;

    // Installs a handler; returns a token (never 0).
    virtual std::uint64_t add(Handler handler) = 0;

    // Removes a handler; unknown tokens are ignored.
    virtual void remove(std::uint64_t token) = 0;
};

} // namespace hg
