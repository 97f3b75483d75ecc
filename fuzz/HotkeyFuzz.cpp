// Feeds arbitrary bytes, as they might stand in the user-defaults store, to
// the stored shortcut's decoding. Any crash, sanitizer report or hang is a
// finding; so is a shortcut that does not survive being written and read
// back, or one that cannot be shown.
#include "hotkey/Hotkey.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto hotkey = hg::Hotkey::fromJson(text);
    if (!hotkey) {
        return 0;
    }
    if (hg::Hotkey::fromJson(hotkey->toJson()) != hotkey) {
        std::abort();
    }
    if (hotkey->displayString(nullptr).empty()) {
        std::abort();
    }
    return 0;
}
