#include "backends/linux/X11EventTap.hpp"

#include <QCoreApplication>
#include <QGuiApplication>
#include <xcb/xcb.h>
#include <xcb/xinput.h>
// xkb.h names a struct member `explicit`, a keyword in C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <chrono>
#include <cstdlib>
#include <memory>

namespace hg {

// Nothing in this file may print a key code or character: the raw events are
// every keystroke of the session, passwords included.

namespace {

using namespace std::chrono_literals;

constexpr auto recheckInterval = 1s;

struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T> using Reply = std::unique_ptr<T, FreeDeleter>;

constexpr std::uint32_t rawKeyMask =
    XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;

// One device's XInput 2 event mask of one word, as XISelectEvents takes it.
struct OneWordMask {
    xcb_input_event_mask_t head;
    std::uint32_t word;
};

} // namespace

X11EventTap::X11EventTap(const ShortcutSource& shortcut, LineSink& out)
    : shortcut_(shortcut), out_(out) {
    timer_.setInterval(recheckInterval);
    QObject::connect(&timer_, &QTimer::timeout, [this] { checkForChanges(); });
}

X11EventTap::~X11EventTap() {
    remove();
}

bool X11EventTap::install(Callback callback) {
    remove();
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        return false;
    }
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
    if (connection == nullptr) {
        return false;
    }
    const auto* xi = xcb_get_extension_data(connection, &xcb_input_id);
    const auto* xkb = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (xi == nullptr || xi->present == 0 || xkb == nullptr || xkb->present == 0) {
        return false;
    }
    connection_ = connection;
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xiOpcode_ = xi->major_opcode;
    xkbEventBase_ = xkb->first_event;
    if (!selectRawEvents(true)) {
        connection_ = nullptr;
        return false;
    }
    // A held key then repeats as presses without releases in between, so the
    // raw releases are real ones.
    const auto flags = xcb_xkb_per_client_flags(
        connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
        XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
    xcb_discard_reply(connection, flags.sequence);

    callback_ = std::move(callback);
    // Keys held while no tap was installed are unknown; forget what was.
    translator_ = X11KeyTranslator{};
    installed_ = true;
    enabled_ = true;
    QCoreApplication::instance()->installNativeEventFilter(this);
    timer_.start();
    updateGrabs(true);
    return true;
}

void X11EventTap::setEnabled(bool enabled) {
    if (!installed_ || enabled == enabled_) {
        return;
    }
    enabled_ = enabled;
    updateGrabs(false);
}

void X11EventTap::remove() {
    if (!installed_) {
        return;
    }
    installed_ = false;
    enabled_ = false;
    timer_.stop();
    ungrabAll();
    selectRawEvents(false);
    xcb_flush(connection_);
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
    callback_ = nullptr;
    grabbedShortcut_.reset();
    connection_ = nullptr;
}

void X11EventTap::refresh() {
    if (installed_) {
        mappingChanged_ = false;
        updateGrabs(true);
    }
}

void X11EventTap::checkForChanges() {
    if (!installed_) {
        return;
    }
    if (mappingChanged_ || shortcut_.current() != grabbedShortcut_) {
        const bool readMapping = mappingChanged_;
        mappingChanged_ = false;
        updateGrabs(readMapping);
    }
}

bool X11EventTap::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (!installed_ || eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const std::uint8_t type = event->response_type & 0x7F;
    if (type == XCB_KEY_PRESS) {
        return handleKeyPress(message);
    }
    if (type == XCB_KEY_RELEASE) {
        return handleKeyRelease(message);
    }
    if (type == XCB_GE_GENERIC) {
        return handleRawEvent(message);
    }
    // Keyboard mapping changes, core or XKB: Qt needs them too.
    const bool xkbMapChange =
        type == xkbEventBase_ &&
        (event->pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event->pad0 == XCB_XKB_MAP_NOTIFY);
    if (type == XCB_MAPPING_NOTIFY || xkbMapChange) {
        mappingChanged_ = true;
        QTimer::singleShot(0, &timer_, [this] { checkForChanges(); });
    }
    return false;
}

bool X11EventTap::handleKeyPress(const void* message) {
    const auto* press = static_cast<const xcb_key_press_event_t*>(message);
    if (press->event != root_) {
        return false; // a key for one of our own windows
    }
    xcb_connection_t* connection = connection_;
    TapDecision decision = TapDecision::pass;
    if (const auto event = translator_.grabbedPress(press->detail, press->state);
        event && enabled_ && callback_) {
        // A copy: the callback may remove this tap and with it callback_.
        const Callback callback = callback_;
        decision = callback(*event);
    }
    if (decision == TapDecision::remove) {
        xcb_allow_events(connection, XCB_ALLOW_ASYNC_KEYBOARD, press->time);
        // The press began a grab of the whole keyboard; give it back so the
        // keys typed while the shortcut is held go where the user types.
        xcb_ungrab_keyboard(connection, press->time);
    } else {
        xcb_allow_events(connection, XCB_ALLOW_REPLAY_KEYBOARD, press->time);
    }
    xcb_flush(connection);
    checkForChanges();
    return true;
}

bool X11EventTap::handleKeyRelease(const void* message) {
    // Only while our grab holds the keyboard: a release that came before we
    // let go of it.
    const auto* release = static_cast<const xcb_key_release_event_t*>(message);
    if (release->event != root_) {
        return false;
    }
    deliverRelease(release->detail, release->time);
    return true;
}

void X11EventTap::deliverRelease(std::uint8_t keyCode, std::uint32_t time) {
    if (const auto event = translator_.release(keyCode, time); event && enabled_ && callback_) {
        // A release has already gone to its window or is ours anyway; the
        // decision changes nothing.
        const Callback callback = callback_;
        callback(*event);
    }
    checkForChanges();
}

bool X11EventTap::handleRawEvent(const void* message) {
    const auto* generic = static_cast<const xcb_ge_generic_event_t*>(message);
    if (generic->extension != xiOpcode_ || (generic->event_type != XCB_INPUT_RAW_KEY_PRESS &&
                                            generic->event_type != XCB_INPUT_RAW_KEY_RELEASE)) {
        return false;
    }
    const auto* raw = static_cast<const xcb_input_raw_key_press_event_t*>(message);
    if (raw->detail > 255) {
        return true;
    }
    const auto keyCode = static_cast<std::uint8_t>(raw->detail);
    if (generic->event_type == XCB_INPUT_RAW_KEY_PRESS) {
        translator_.rawPress(keyCode);
        checkForChanges();
    } else {
        deliverRelease(keyCode, raw->time);
    }
    return true;
}

void X11EventTap::updateGrabs(bool readMapping) {
    if (readMapping) {
        roles_ = readRoles();
        translator_.setRoles(roles_);
    }
    const Shortcut hotkey = shortcut_.current();
    const bool shortcutChanged = grabbedShortcut_ != hotkey;
    grabbedShortcut_ = hotkey;
    auto plan = enabled_ ? X11GrabPlan::forHotkey(hotkey, roles_) : std::vector<X11Grab>{};
    const bool none =
        hotkey.keyCode == Shortcut::noKey && (hotkey.modifiers & Shortcut::significantMask) == 0;
    if (enabled_ && plan.empty() && shortcutChanged && !none) {
        out_.line("No key of this keyboard gives the shortcut under X11; record another one");
    }
    if (plan != grabs_) {
        ungrabAll();
        grab(plan);
    }
}

void X11EventTap::grab(const std::vector<X11Grab>& grabs) {
    std::vector<xcb_void_cookie_t> cookies;
    cookies.reserve(grabs.size());
    for (const X11Grab& g : grabs) {
        // Reported to the root window whoever has the focus (owner_events 0);
        // the keyboard freezes until handleKeyPress answers.
        cookies.push_back(xcb_grab_key_checked(connection_, 0, root_, g.modifiers, g.keyCode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC));
    }
    bool taken = false;
    for (const auto cookie : cookies) {
        if (Reply<xcb_generic_error_t> error{xcb_request_check(connection_, cookie)}) {
            taken = true;
        }
    }
    grabs_ = grabs;
    if (taken) {
        out_.line("Another program holds the shortcut; it may not work until that program "
                  "lets go");
    }
}

void X11EventTap::ungrabAll() {
    for (const X11Grab& g : grabs_) {
        xcb_ungrab_key(connection_, g.keyCode, root_, g.modifiers);
    }
    grabs_.clear();
    xcb_flush(connection_);
}

bool X11EventTap::selectRawEvents(bool on) {
    // The root window's XInput 2 selection is shared with Qt's for the same
    // device set: change only our bits.
    std::uint32_t current = 0;
    if (Reply<xcb_input_xi_get_selected_events_reply_t> reply{
            xcb_input_xi_get_selected_events_reply(
                connection_, xcb_input_xi_get_selected_events(connection_, root_), nullptr)}) {
        for (auto it = xcb_input_xi_get_selected_events_masks_iterator(reply.get()); it.rem > 0;
             xcb_input_event_mask_next(&it)) {
            if (it.data->deviceid == XCB_INPUT_DEVICE_ALL_MASTER && it.data->mask_len > 0) {
                current = xcb_input_event_mask_mask(it.data)[0];
            }
        }
    }
    if (on) {
        previousRawMask_ = current & rawKeyMask;
    }
    const std::uint32_t wanted =
        on ? (current | rawKeyMask) : ((current & ~rawKeyMask) | previousRawMask_);
    OneWordMask mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, wanted};
    Reply<xcb_generic_error_t> error{xcb_request_check(
        connection_, xcb_input_xi_select_events_checked(connection_, root_, 1, &mask.head))};
    return error == nullptr;
}

X11KeyRoles X11EventTap::readRoles() const {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto keyboardCookie = xcb_get_keyboard_mapping(connection_, setup->min_keycode, count);
    const auto modifierCookie = xcb_get_modifier_mapping(connection_);
    Reply<xcb_get_keyboard_mapping_reply_t> keyboard{
        xcb_get_keyboard_mapping_reply(connection_, keyboardCookie, nullptr)};
    Reply<xcb_get_modifier_mapping_reply_t> modifiers{
        xcb_get_modifier_mapping_reply(connection_, modifierCookie, nullptr)};
    if (!keyboard || !modifiers) {
        return {};
    }
    const std::span<const std::uint8_t> modifierKeys{
        xcb_get_modifier_mapping_keycodes(modifiers.get()),
        static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(modifiers.get()))};
    const std::span<const std::uint32_t> keysyms{
        xcb_get_keyboard_mapping_keysyms(keyboard.get()),
        static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(keyboard.get()))};
    return X11KeyRoles::fromMapping(modifierKeys, modifiers->keycodes_per_modifier,
                                    setup->min_keycode, keyboard->keysyms_per_keycode, keysyms);
}

} // namespace hg
