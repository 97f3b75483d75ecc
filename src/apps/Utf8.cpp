#include "apps/Utf8.hpp"

#include <cstdint>

namespace hg::utf8 {

std::optional<char32_t> decodeNext(std::string_view text, std::size_t& pos) {
    const auto byteAt = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byteAt(pos);
    const std::size_t start = pos;
    ++pos;
    if (lead < 0x80) {
        return lead;
    }
    // The range of the first continuation byte is narrowed for the leads whose
    // plain range would admit overlong forms (E0, F0), surrogates (ED) or
    // values past U+10FFFF (F4), as in the table of well-formed sequences.
    std::size_t extra = 0;
    char32_t value = 0;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        extra = 1;
        value = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        extra = 2;
        value = lead & 0x0Fu;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        extra = 3;
        value = lead & 0x07u;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return std::nullopt;
    }
    if (text.size() - start - 1 < extra) {
        return std::nullopt;
    }
    for (std::size_t i = 1; i <= extra; ++i) {
        const std::uint8_t b = byteAt(start + i);
        if (b < low || b > high) {
            return std::nullopt;
        }
        low = 0x80;
        high = 0xBF;
        value = (value << 6) | (b & 0x3Fu);
    }
    pos = start + 1 + extra;
    return value;
}

bool isValid(std::string_view text) {
    std::size_t pos = 0;
    while (pos < text.size()) {
        // Runs of ASCII are the common case; skip them without decoding.
        if (static_cast<std::uint8_t>(text[pos]) < 0x80) {
            ++pos;
            continue;
        }
        if (!decodeNext(text, pos)) {
            return false;
        }
    }
    return true;
}

} // namespace hg::utf8
