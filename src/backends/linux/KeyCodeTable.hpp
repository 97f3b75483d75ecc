#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace hg {

// Conversion between X11 key codes and macOS virtual key codes.
//
// Stored shortcuts keep macOS virtual key codes on every platform, so the
// Linux backends translate at their edge. X11 key codes on evdev-based servers
// (every current Xorg, Xwayland and Xvfb) are the kernel's evdev codes plus 8;
// the physical key is what matters, not the layout: the key labelled A on a US
// keyboard is the same code on an AZERTY one.
//
// The pairs come from the published USB HID / evdev / Mac key-code columns.
// Keys that exist on only one side (Print Screen, Pause, media keys on the Mac;
// the Mac's keypad Clear is the PC's Num Lock) convert to nothing or to their
// nearest counterpart as written in the table.
class KeyCodeTable {
public:
    struct Entry {
        std::uint32_t x11;
        std::uint16_t mac;
    };

    // X11 key codes are evdev codes plus this.
    static constexpr std::uint32_t evdevOffset = 8;

    // The fn key: evdev KEY_FN (464) lies above the 8-bit key codes of the X11
    // core protocol, so X never reports it unless the keymap puts the XF86Fn
    // keysym on a lower code; the X11 backend looks for that keysym itself.
    static constexpr std::uint16_t macFunctionKey = 63;

    // The macOS virtual key code of an X11 key code; nothing for keys without one.
    [[nodiscard]] static std::optional<std::uint16_t> macKeyCode(std::uint32_t x11KeyCode);

    // The X11 key code of a macOS virtual key code; nothing for keys without one.
    [[nodiscard]] static std::optional<std::uint32_t> x11KeyCode(std::uint16_t macKeyCode);

    // Every pair, in no particular order; each side appears once.
    [[nodiscard]] static std::span<const Entry> entries();
};

} // namespace hg
