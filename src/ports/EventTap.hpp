#pragma once

#include <cstdint>
#include <functional>

namespace hg {

// Event types as Core Graphics numbers them.
namespace tapevent {
inline constexpr std::uint32_t keyDown = 10;
inline constexpr std::uint32_t keyUp = 11;
inline constexpr std::uint32_t flagsChanged = 12;
inline constexpr std::uint32_t disabledByTimeout = 0xFFFFFFFE;
inline constexpr std::uint32_t disabledByUserInput = 0xFFFFFFFF;
} // namespace tapevent

// One keyboard event as the tap sees it. Key codes are macOS virtual key codes
// and flags are Core Graphics event flags on every platform; backends convert.
struct TapEvent {
    std::uint32_t type = 0;
    std::int64_t keyCode = 0;    // the key-code field, as the platform's 64-bit value
    std::uint64_t flags = 0;     // modifier flags after the event
    std::int64_t autorepeat = 0; // nonzero for auto-repeated key downs
};

enum class TapDecision : std::uint8_t { pass, remove };

// A system-wide keyboard tap that may remove events from the stream.
class EventTap {
public:
    using Callback = std::function<TapDecision(const TapEvent&)>;

    virtual ~EventTap() = default;

    // Installs an active tap for key down, key up and flags changed, delivering
    // events (and the two tap-disabled notifications) to `callback` on the main
    // thread. Returns false when the platform refuses the tap (no permission,
    // no display); nothing is installed then. Installing while installed
    // replaces the earlier tap.
    virtual bool install(Callback callback) = 0;

    // Enables or disables an installed tap; ignored when none is installed.
    virtual void setEnabled(bool enabled) = 0;

    // Removes the tap; ignored when none is installed.
    virtual void remove() = 0;

    // Runs `action` on the main thread once the callback that asks for it has
    // returned, actions in the order asked, so that what an event sets off
    // never holds up the event itself. A tap whose callback the user's typing
    // waits for (a macOS session tap) must queue it; this default, for taps
    // that hold up nobody's typing, runs it at once.
    virtual void runAfterCallback(std::function<void()> action) { action(); }

    // Whether the events carry the function (fn) modifier at all. On PC
    // keyboards fn is handled by the keyboard itself and never reaches
    // programs, so a shortcut of fn alone cannot be pressed there.
    [[nodiscard]] virtual bool seesFunctionKey() const { return true; }
};

} // namespace hg
