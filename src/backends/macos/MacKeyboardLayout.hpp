#pragma once

#include "ports/KeyboardLayout.hpp"

namespace hg {

// Key names from the current keyboard layout's Unicode layout data (Text
// Input Sources and UCKeyTranslate), looked up afresh on every call so that a
// layout switch shows at once; under an input method, the layout it types
// with. Gives what the layout gives, control characters included.
//
// The Globe key's action is the user's "Press 🌐 key to" setting
// (AppleFnUsageType in the com.apple.HIToolbox preferences: 0 Do Nothing,
// 1 Change Input Source, 2 Show Emoji & Symbols, 3 Start Dictation); unset,
// the system's default, which acts. Main thread only.
class MacKeyboardLayout final : public KeyboardLayout {
public:
    [[nodiscard]] std::optional<std::string> displayText(std::uint16_t keyCode) const override;
    [[nodiscard]] bool systemActsOnFunctionKey() const override;
};

} // namespace hg
