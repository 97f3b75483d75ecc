#include "hotkey/GlobeKeyNote.hpp"

namespace hg {

std::optional<std::string> globeKeyNote(const Hotkey& inForce, const KeyboardLayout& layout) {
    const bool fnAlone = inForce.keyCode == Hotkey::noKey &&
                         (inForce.modifiers & Hotkey::significantMask) == modifier::function;
    if (fnAlone && layout.systemActsOnFunctionKey()) {
        return std::string(globeKeyNoteText);
    }
    return std::nullopt;
}

} // namespace hg
