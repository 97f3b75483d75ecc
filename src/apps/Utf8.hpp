#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace hg::utf8 {

// Decodes the scalar value that starts at `pos` and moves `pos` past it.
// Ill-formed input (a stray continuation byte, a truncated sequence, an
// overlong form, a surrogate, a value above U+10FFFF) gives nothing and moves
// `pos` past the first byte only, so a caller can resynchronise.
[[nodiscard]] std::optional<char32_t> decodeNext(std::string_view text, std::size_t& pos);

// Whether `text` is well-formed UTF-8 as Unicode defines it (the same bytes a
// strict decoder such as the platform's string-from-data conversion accepts).
[[nodiscard]] bool isValid(std::string_view text);

} // namespace hg::utf8
