#include "apps/CaseFold.hpp"

#include "apps/Utf8.hpp"

#include <cstdint>
#include <string>

namespace hg {

namespace {

bool isEven(char32_t c) {
    return (c & 1u) == 0;
}

// Appends the full case folding of `c`.
void appendFolded(char32_t c, std::u32string& out) {
    if (c >= U'A' && c <= U'Z') {
        out.push_back(c + 32);
    } else if (c < 0x80) {
        out.push_back(c);
    } else if (c == 0xB5) { // micro sign folds to Greek mu
        out.push_back(0x3BC);
    } else if ((c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3AB && c != 0x3A2) ||
               (c >= 0x410 && c <= 0x42F) || (c >= 0xFF21 && c <= 0xFF3A)) {
        out.push_back(c + 32);
    } else if (c == 0xDF) { // sharp s
        out.append(U"ss");
    } else if (c == 0x130) { // capital I with dot above
        out.append(U"i\u0307");
    } else if (c == 0x178) {
        out.push_back(0xFF);
    } else if (c == 0x17F) { // long s
        out.push_back(U's');
    } else if (((c >= 0x100 && c <= 0x12F) || (c >= 0x132 && c <= 0x137) ||
                (c >= 0x14A && c <= 0x177) || (c >= 0x460 && c <= 0x481) ||
                (c >= 0x48A && c <= 0x4BF)) &&
               isEven(c)) {
        out.push_back(c + 1);
    } else if (((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) && !isEven(c)) {
        out.push_back(c + 1);
    } else if (c == 0x386) {
        out.push_back(0x3AC);
    } else if (c >= 0x388 && c <= 0x38A) {
        out.push_back(c + 37);
    } else if (c == 0x38C) {
        out.push_back(0x3CC);
    } else if (c == 0x38E || c == 0x38F) {
        out.push_back(c + 63);
    } else if (c == 0x3C2) { // final sigma
        out.push_back(0x3C3);
    } else if (c >= 0x400 && c <= 0x40F) {
        out.push_back(c + 80);
    } else {
        out.push_back(c);
    }
}

std::u32string folded(std::string_view text) {
    std::u32string out;
    out.reserve(text.size());
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t start = pos;
        if (const auto c = utf8::decodeNext(text, pos)) {
            appendFolded(*c, out);
        } else {
            // Outside the Unicode range, so it equals nothing but itself.
            out.push_back(0x110000 + static_cast<std::uint8_t>(text[start]));
        }
    }
    return out;
}

} // namespace

bool caseInsensitiveEqual(std::string_view a, std::string_view b) {
    if (a.size() == b.size() && a == b) {
        return true;
    }
    return folded(a) == folded(b);
}

} // namespace hg
