#include "backends/linux/X11KeyTranslator.hpp"

#include "backends/linux/KeyCodeTable.hpp"
#include "ports/ModifierKeys.hpp"

namespace hg {

namespace {

constexpr std::uint16_t capsLockKeyCode = 57;

// The key that stands for a modifier when the physical key is another one.
constexpr std::uint16_t leftKeyOf(std::uint64_t role) {
    switch (role) {
    case modifier::shift:
        return 56;
    case modifier::control:
        return 59;
    case modifier::option:
        return 58;
    case modifier::command:
        return 55;
    default:
        return KeyCodeTable::macFunctionKey;
    }
}

} // namespace

std::optional<std::uint16_t> X11KeyTranslator::macKeyCode(std::uint8_t keyCode) const {
    const auto mac = KeyCodeTable::macKeyCode(keyCode);
    const std::uint64_t role = roles_.roleOf(keyCode);
    if (role == 0) {
        // A key the mapping gives no modifier role must not read as one.
        if (mac && modifierBitForKeyCode(*mac) != 0) {
            return std::nullopt;
        }
        return mac;
    }
    if (mac && modifierBitForKeyCode(*mac) == role) {
        return mac;
    }
    return leftKeyOf(role);
}

bool X11KeyTranslator::isFlagsKey(std::uint16_t macKeyCode, std::uint8_t keyCode) const {
    return roles_.roleOf(keyCode) != 0 || macKeyCode == capsLockKeyCode;
}

std::uint64_t X11KeyTranslator::heldFlags() const {
    std::uint64_t flags = 0;
    for (std::size_t code = 0; code < down_.size(); ++code) {
        if (down_[code]) {
            flags |= roles_.roleOf(static_cast<std::uint8_t>(code));
        }
    }
    return flags;
}

std::optional<TapEvent> X11KeyTranslator::grabbedPress(std::uint8_t keyCode, std::uint16_t state) {
    const bool repeat = caught_[keyCode];
    caught_.set(keyCode);
    down_.set(keyCode);
    const auto mac = macKeyCode(keyCode);
    if (!mac) {
        return std::nullopt;
    }
    TapEvent event;
    event.keyCode = *mac;
    event.autorepeat = repeat ? 1 : 0;
    // X reports the state before the press; fn is ours to know.
    event.flags = X11KeyRoles::flagsForState(state) | (heldFlags() & modifier::function) |
                  roles_.roleOf(keyCode);
    event.type = isFlagsKey(*mac, keyCode) ? tapevent::flagsChanged : tapevent::keyDown;
    return event;
}

void X11KeyTranslator::rawPress(std::uint8_t keyCode) {
    down_.set(keyCode);
}

std::optional<TapEvent> X11KeyTranslator::release(std::uint8_t keyCode, std::uint32_t time) {
    // The same release may come twice: raw and core, or raw twice. A key
    // pressed again since has been seen going down in between.
    if (!down_[keyCode] && released_[keyCode] && lastRelease_[keyCode] == time) {
        return std::nullopt;
    }
    released_.set(keyCode);
    lastRelease_[keyCode] = time;
    down_.reset(keyCode);
    caught_.reset(keyCode);
    const auto mac = macKeyCode(keyCode);
    if (!mac) {
        return std::nullopt;
    }
    TapEvent event;
    event.keyCode = *mac;
    event.flags = heldFlags();
    event.type = isFlagsKey(*mac, keyCode) ? tapevent::flagsChanged : tapevent::keyUp;
    return event;
}

} // namespace hg
