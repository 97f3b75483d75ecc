#pragma once

#include "hotkey/Hotkey.hpp"
#include "ports/KeyboardLayout.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace hg {

// fn is also the Globe key on a Mac, and the system acts on it before any
// program sees it: with a shortcut of fn alone, push-to-talk could open the
// emoji picker on every press. Whether it does is the user's setting, so the
// program says so, with the one step that changes it, below the shortcut in
// Preferences and in the Accessibility setup window.
inline constexpr std::string_view globeKeyNoteText =
    "fn is also the \U0001F310 key: macOS may show emoji, change the input source or start "
    "dictation when you press it. To stop that, set System Settings \u203A Keyboard \u203A "
    "\u201CPress \U0001F310 key to\u201D to \u201CDo Nothing\u201D.";

// The note for the shortcut in force: when it is fn alone and the system acts
// on fn; nothing otherwise.
[[nodiscard]] std::optional<std::string> globeKeyNote(const Hotkey& inForce,
                                                      const KeyboardLayout& layout);

} // namespace hg
