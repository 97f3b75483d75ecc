#pragma once

#include <QByteArray>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hg {

// One release in an appcast.
struct AppcastItem {
    std::string title;
    std::string version;          // sparkle:version, compared with ours
    std::string shortVersion;     // sparkle:shortVersionString, shown to the user
    std::string releaseNotesLink; // sparkle:releaseNotesLink
    std::string downloadLink;     // the enclosure's url, else the item's link
    friend bool operator==(const AppcastItem&, const AppcastItem&) = default;
};

// An update feed in Sparkle's appcast format: an RSS 2.0 channel whose items
// carry their version in the Sparkle namespace, as elements or, in older
// feeds, as attributes of the enclosure.
class AppcastFeed {
public:
    // The feed's releases that carry a version, in feed order; or the reason
    // the text is no appcast.
    using Parsed = std::variant<std::vector<AppcastItem>, std::string>;
    [[nodiscard]] static Parsed parse(const QByteArray& xml);

    // The release with the highest version; null for none.
    [[nodiscard]] static const AppcastItem* newest(const std::vector<AppcastItem>& items);

    // Negative, zero or positive as version `a` is lower than, equal to or
    // higher than `b`. Dotted components compare as numbers (1.10 > 1.9);
    // missing ones count as 0 (1.2 == 1.2.0); a component's non-digit tail
    // is ignored (1.2b == 1.2).
    [[nodiscard]] static int compareVersions(std::string_view a, std::string_view b);
};

} // namespace hg
