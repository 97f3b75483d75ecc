#pragma once

#include "backends/linux/X11GrabPlan.hpp"
#include "backends/linux/X11KeyTranslator.hpp"
#include "ports/EventTap.hpp"
#include "ports/LineSink.hpp"
#include "ports/ShortcutSource.hpp"

#include <QAbstractNativeEventFilter>
#include <QTimer>
#include <cstdint>
#include <optional>
#include <vector>

struct xcb_connection_t;

namespace hg {

// The event tap on an X11 display, on Qt's own xcb connection.
//
// How it works. X11 has no tap that sees every key and may drop any of them.
// What it has are passive key grabs: the server hands a press of a grabbed
// key combination to the grabbing client instead of the focused window. So
// the stored shortcut is grabbed on the root window (see X11GrabPlan), in
// synchronous mode: the keyboard freezes on the caught press until we answer.
// The callback's decision is the answer:
//   - remove: the press is consumed, and the keyboard grab that the press
//     started is let go at once, so that keys typed while the shortcut is held
//     reach the focused window;
//   - pass: the press is replayed to the focused window as if no grab existed.
// Releases, and the keys that go down while the shortcut is held, are watched
// through XInput 2 raw events on the root window, which every client sees
// whoever holds the focus or a grab; a release that comes while our grab
// still holds the keyboard also arrives as a core event of ours.
//
// What X11 cannot do, compared with a real tap:
//   - Only presses of the grabbed combinations can be removed. Releases come
//     from raw events, which are copies: the release of the shortcut's key
//     normally still reaches the focused window (a release without its
//     press, which applications ignore), and "remove" on a release has no
//     effect.
//   - The raw report of a release made while our grab freezes the keyboard
//     can go missing; the core release that then comes to us stands in.
//   - Keys outside the grabs are never delivered as presses; the callback
//     sees their releases only. Nothing the monitor would match is lost: a
//     press it could match is always one of the grabbed combinations.
//   - Grabs match modifiers exactly, over all eight X modifiers: with AltGr
//     (Mod5) or a Mod3 key held the shortcut does not fire. Caps Lock and
//     Num Lock are covered by grabbing each lock combination.
//   - fn is rarely visible to X: its evdev code lies above the 8-bit key
//     codes of the protocol, so an fn shortcut works only where the keymap
//     puts XF86Fn on a lower key code. Otherwise nothing is grabbed.
//   - A combination another client has grabbed first cannot be grabbed; one
//     line says so. While another client holds the whole keyboard (an open
//     menu, a screen locker) the shortcut does not fire.
//   - While the callback runs the keyboard is frozen for everyone, as a
//     macOS tap holds the event stream; the callback must return quickly.
//   - Wayland has no global grabs: without an X11 display install() fails.
//
// The stored shortcut decides what is grabbed. It is read again on every
// event the tap sees and once a second (a timer), and the grabs are renewed
// when it changed, so a newly recorded shortcut works at the next keystroke
// or within a second. Keyboard mapping changes renew them too.
class X11EventTap final : public EventTap, private QAbstractNativeEventFilter {
public:
    X11EventTap(const ShortcutSource& shortcut, LineSink& out);
    ~X11EventTap() override;
    X11EventTap(const X11EventTap&) = delete;
    X11EventTap& operator=(const X11EventTap&) = delete;

    // False without an X11 display (Qt not on its xcb platform, or no XInput
    // 2 / XKB on the server).
    bool install(Callback callback) override;
    void setEnabled(bool enabled) override;
    void remove() override;
    // PC keyboards keep fn to themselves.
    [[nodiscard]] bool seesFunctionKey() const override { return false; }

    // Reads the keyboard mapping and the stored shortcut now and renews the
    // grabs when they changed. The tap does this by itself; tests call it to
    // avoid waiting.
    void refresh();

    // The combinations grabbed now (empty when disabled or not installed).
    [[nodiscard]] const std::vector<X11Grab>& grabs() const { return grabs_; }

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    bool handleKeyPress(const void* event);
    bool handleKeyRelease(const void* event);
    bool handleRawEvent(const void* event);
    void deliverRelease(std::uint8_t keyCode, std::uint32_t time);
    void checkForChanges();
    void updateGrabs(bool readMapping);
    void grab(const std::vector<X11Grab>& grabs);
    void ungrabAll();
    bool selectRawEvents(bool on);
    [[nodiscard]] X11KeyRoles readRoles() const;

    const ShortcutSource& shortcut_;
    LineSink& out_;
    Callback callback_;
    xcb_connection_t* connection_ = nullptr;
    std::uint32_t root_ = 0;
    std::uint8_t xiOpcode_ = 0;
    std::uint8_t xkbEventBase_ = 0;
    std::uint32_t previousRawMask_ = 0;
    bool installed_ = false;
    bool enabled_ = false;
    bool mappingChanged_ = false;
    std::optional<Shortcut> grabbedShortcut_;
    X11KeyRoles roles_;
    X11KeyTranslator translator_;
    std::vector<X11Grab> grabs_;
    QTimer timer_;
};

} // namespace hg
