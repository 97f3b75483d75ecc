#pragma once

#include "ports/EventTap.hpp"
#include "backends/linux/X11KeyRoles.hpp"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>

namespace hg {

// Turns the X11 events the tap sees into the tap's events: macOS key codes,
// Core Graphics flags after the event, modifier keys as flags-changed events.
//
// Presses arrive as core key events of our own grabs, with the X modifier
// state from before the press. Releases arrive as XInput 2 raw events, which
// carry no modifier state, and, for a release that comes while our grab still
// holds the keyboard, as a core event too (the server does not always report
// those raw). The flags after a release come from the keys this object has
// seen go down and not come up. Raw presses only feed that tracking: every
// press the shortcut could match is one a grab catches.
class X11KeyTranslator {
public:
    void setRoles(const X11KeyRoles& roles) { roles_ = roles; }

    // A press caught by a grab. Auto-repeat is told by the key having been
    // caught already with no release since. Nothing for keys without a macOS
    // counterpart.
    [[nodiscard]] std::optional<TapEvent> grabbedPress(std::uint8_t keyCode, std::uint16_t state);

    // A raw press of any key.
    void rawPress(std::uint8_t keyCode);

    // A release of any key, raw or core. Nothing for keys without a macOS
    // counterpart and for another report of the release just seen (same key,
    // same time, no press in between).
    [[nodiscard]] std::optional<TapEvent> release(std::uint8_t keyCode, std::uint32_t time);

    // The macOS key code that reports this key: modifier keys by the role the
    // mapping gives them (left and right kept where the key itself says so).
    [[nodiscard]] std::optional<std::uint16_t> macKeyCode(std::uint8_t keyCode) const;

private:
    [[nodiscard]] std::uint64_t heldFlags() const;
    [[nodiscard]] bool isFlagsKey(std::uint16_t macKeyCode, std::uint8_t keyCode) const;

    X11KeyRoles roles_;
    std::bitset<256> down_;
    std::bitset<256> caught_;
    std::bitset<256> released_;
    std::array<std::uint32_t, 256> lastRelease_{};
};

} // namespace hg
