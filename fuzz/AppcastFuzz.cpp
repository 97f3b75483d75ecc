// Feeds arbitrary bytes to the update feed's reading, and two versions cut
// from them to the version comparison. Any crash, sanitizer report or hang
// is a finding; so is a comparison that is not antisymmetric, or that finds a
// version unequal to itself, or a newest release that some other release of
// the feed beats.
#include "shells/qt/AppcastFeed.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

int sign(int value) {
    return (value > 0) - (value < 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto cut = text.find('\n');
    const std::string_view a = text.substr(0, cut);
    const std::string_view b = cut == std::string_view::npos ? "" : text.substr(cut + 1);
    const int ab = sign(hg::AppcastFeed::compareVersions(a, b));
    if (ab != -sign(hg::AppcastFeed::compareVersions(b, a)) ||
        hg::AppcastFeed::compareVersions(a, a) != 0) {
        std::abort();
    }

    const auto parsed = hg::AppcastFeed::parse(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (const auto* items = std::get_if<std::vector<hg::AppcastItem>>(&parsed)) {
        const hg::AppcastItem* newest = hg::AppcastFeed::newest(*items);
        if (!items->empty() && newest == nullptr) {
            std::abort();
        }
        for (const auto& item : *items) {
            if (hg::AppcastFeed::compareVersions(item.version, newest->version) > 0) {
                std::abort();
            }
        }
    }
    return 0;
}
