#include "backends/linux/XkbKeyboardLayout.hpp"

#include "backends/linux/KeyCodeTable.hpp"

#include <QGuiApplication>
#include <QString>
#include <array>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace hg {

struct XkbKeyboardLayout::Keymap {
    xkb_context* context = nullptr;
    xkb_keymap* keymap = nullptr;
    xkb_layout_index_t layout = 0; // the active group when read from X11

    Keymap() = default;
    Keymap(const Keymap&) = delete;
    Keymap& operator=(const Keymap&) = delete;
    ~Keymap() {
        xkb_keymap_unref(keymap);
        xkb_context_unref(context);
    }
};

namespace {

// The key's text in a fresh state on `layout` with only `locked` modifiers.
std::string textOf(xkb_keymap* keymap, xkb_layout_index_t layout, xkb_mod_mask_t locked,
                   xkb_keycode_t key) {
    xkb_state* state = xkb_state_new(keymap);
    if (state == nullptr) {
        return {};
    }
    xkb_state_update_mask(state, 0, 0, locked, 0, 0, layout);
    std::array<char, 64> buffer{};
    const int length = xkb_state_key_get_utf8(state, key, buffer.data(), buffer.size());
    xkb_state_unref(state);
    if (length <= 0 || static_cast<std::size_t>(length) >= buffer.size()) {
        return {};
    }
    return std::string(buffer.data(), static_cast<std::size_t>(length));
}

bool isControl(const std::string& text) {
    const auto first = static_cast<unsigned char>(text.front());
    return first < 0x20 || first == 0x7F;
}

} // namespace

XkbKeyboardLayout::XkbKeyboardLayout() : fromX11_(true) {}

XkbKeyboardLayout::XkbKeyboardLayout(const std::string& rules, const std::string& model,
                                     const std::string& layout, const std::string& variant,
                                     const std::string& options)
    : fixed_(std::make_unique<Keymap>()) {
    fixed_->context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (fixed_->context == nullptr) {
        return;
    }
    // A layout that cannot be built is answered by hasKeymap(), not on stderr.
    xkb_context_set_log_level(fixed_->context, XKB_LOG_LEVEL_CRITICAL);
    const xkb_rule_names names{rules.c_str(), model.c_str(), layout.c_str(), variant.c_str(),
                               options.c_str()};
    fixed_->keymap =
        xkb_keymap_new_from_names(fixed_->context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
}

XkbKeyboardLayout::~XkbKeyboardLayout() = default;

std::unique_ptr<XkbKeyboardLayout::Keymap> XkbKeyboardLayout::currentX11Keymap() const {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        return nullptr;
    }
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
    if (connection == nullptr) {
        return nullptr;
    }
    std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (device == -1) {
        xkb_x11_setup_xkb_extension(
            connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr);
        device = xkb_x11_get_core_keyboard_device_id(connection);
        if (device == -1) {
            return nullptr;
        }
    }
    auto result = std::make_unique<Keymap>();
    result->context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (result->context == nullptr) {
        return nullptr;
    }
    result->keymap = xkb_x11_keymap_new_from_device(result->context, connection, device,
                                                    XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (result->keymap == nullptr) {
        return nullptr;
    }
    // Only the active layout is taken from the device; its modifiers are not.
    if (xkb_state* live = xkb_x11_state_new_from_device(result->keymap, connection, device)) {
        result->layout = xkb_state_serialize_layout(live, XKB_STATE_LAYOUT_EFFECTIVE);
        xkb_state_unref(live);
    }
    return result;
}

bool XkbKeyboardLayout::hasKeymap() const {
    if (fromX11_) {
        return currentX11Keymap() != nullptr;
    }
    return fixed_ && fixed_->keymap != nullptr;
}

std::optional<std::string> XkbKeyboardLayout::displayText(std::uint16_t keyCode) const {
    const auto x11 = KeyCodeTable::x11KeyCode(keyCode);
    if (!x11) {
        return std::nullopt;
    }
    std::unique_ptr<Keymap> live = fromX11_ ? currentX11Keymap() : nullptr;
    const Keymap* keymap = fromX11_ ? live.get() : fixed_.get();
    if (keymap == nullptr || keymap->keymap == nullptr) {
        return std::nullopt;
    }
    std::string text = textOf(keymap->keymap, keymap->layout, 0, *x11);
    if (text.empty()) {
        // Keypad keys give digits as on a Mac keypad, not cursor movements.
        const xkb_mod_index_t numLock = xkb_keymap_mod_get_index(keymap->keymap, XKB_MOD_NAME_NUM);
        if (numLock != XKB_MOD_INVALID) {
            text = textOf(keymap->keymap, keymap->layout, 1U << numLock, *x11);
        }
    }
    // Dead keys give no text at all; Return, Tab, Escape and the like give a
    // control character.
    if (text.empty() || isControl(text)) {
        return std::nullopt;
    }
    return QString::fromStdString(text).toUpper().toStdString();
}

} // namespace hg
