#pragma once

#include <string_view>

namespace hg {

// Whether two UTF-8 texts are the same apart from letter case, as the
// platform's case-insensitive comparison (caseInsensitiveCompare) sees them.
//
// Both sides are case-folded per Unicode's full folding for the Latin,
// Greek, Cyrillic and full-width Latin letters ("ß" matches "SS", "ſ" matches
// "s"); other scripts compare exactly. Unlike the platform, composed and
// decomposed accents ("é" as one or two code points) are not taken as equal:
// the menu titles this is used for are plain ASCII. Ill-formed bytes match
// only the same bytes.
[[nodiscard]] bool caseInsensitiveEqual(std::string_view a, std::string_view b);

} // namespace hg
