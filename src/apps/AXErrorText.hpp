#pragma once

#include "ports/Accessibility.hpp"

#include <cstdint>
#include <string_view>

namespace hg {

// Which kind of accessibility call failed; each has its own wording.
enum class AXErrorColumn : std::uint8_t {
    menuBarChildren, // reading "AXMenuBar" or "AXChildren"
    title,           // reading "AXTitle"
    press,           // performing "AXPress"
};

// The line printed when a call of that kind fails with `code`. Codes outside
// the platform's list share the last row of the table.
[[nodiscard]] std::string_view axErrorText(AXErrorColumn column, AXError code);

} // namespace hg
