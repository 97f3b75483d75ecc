#pragma once

#include "ports/KeyboardLayout.hpp"

namespace hg {

// Key names from the current keyboard input source's Unicode layout
// (Text Input Sources and UCKeyTranslate), looked up afresh on every call so
// that a layout switch shows at once. Gives what the layout gives, control
// characters included; input methods without a key layout give nothing.
// Main thread only.
class MacKeyboardLayout final : public KeyboardLayout {
public:
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t keyCode) const override;
};

} // namespace hg
