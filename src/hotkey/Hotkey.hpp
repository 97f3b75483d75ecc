#pragma once

#include "ports/KeyboardLayout.hpp"
#include "ports/ModifierKeys.hpp"
#include "ports/Shortcut.hpp"
#include "ports/UserDefaults.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hg {

// The mute shortcut, as the program stores and shows it. The user-defaults
// entry is the only place the current shortcut lives; readers load it afresh
// whenever they need it.
struct Hotkey : Shortcut {
    static constexpr std::string_view defaultsKey = "mute_hotkey_v2";
    // No shortcut needs more: a longer stored value or text is not decoded.
    static constexpr std::size_t maxEncodedBytes = 1024;

    // fn alone.
    [[nodiscard]] static Hotkey defaultHotkey() { return Hotkey{{noKey, modifier::function}}; }

    // The stored shortcut, or the default when nothing usable is stored
    // (absent, not a data value, longer than maxEncodedBytes, or undecodable).
    // Decodes only when the stored bytes changed since the last load. Never
    // logs, never writes. Main thread only.
    [[nodiscard]] static Hotkey load(const UserDefaults& defaults);
    void save(UserDefaults& defaults) const;

    // Compact JSON with keyCode first: {"keyCode":40,"modifiers":1310720}.
    [[nodiscard]] std::string toJson() const;
    // Both members required, others ignored; nothing for anything else, for
    // text after the object, and for text longer than maxEncodedBytes.
    [[nodiscard]] static std::optional<Hotkey> fromJson(std::string_view text);

    // Modifier symbols in the order ⌃ ⌥ ⇧ ⌘ fn, then the key name; "None" for
    // no key and no modifiers. `layout` may be null (key names fall back);
    // a layout of a desktop that names modifiers gives "Ctrl+Alt+K".
    [[nodiscard]] std::string displayString(const KeyboardLayout* layout) const;

    friend bool operator==(const Hotkey&, const Hotkey&) = default;
};

} // namespace hg
