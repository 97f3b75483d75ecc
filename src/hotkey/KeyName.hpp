#pragma once

#include "ports/KeyboardLayout.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hg {

// The fixed name of a special key (Return, Tab, Space, Delete, Escape, F1-F12,
// Home, End, Page Up/Down, Forward Delete, arrows), the same on every layout;
// nothing for other keys.
[[nodiscard]] std::optional<std::string_view> specialKeyName(std::uint16_t keyCode);

// The text shown for a key: its special-key name, else what `layout` (may be
// null) produces for it, else the key code as "<105>".
[[nodiscard]] std::string keyName(std::uint16_t keyCode, const KeyboardLayout* layout);

} // namespace hg
