#include "shells/qt/AppcastFeed.hpp"

#include <QXmlStreamReader>
#include <algorithm>
#include <cstdint>

namespace hg {

namespace {

const QString sparkleNamespace =
    QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");

// The numeric components of a version, each as its leading digits without
// leading zeros ("" for zero), so that numbers of any length compare without
// overflow: a longer number is the larger one, equal lengths compare as text.
std::vector<std::string_view> components(std::string_view text) {
    std::vector<std::string_view> parts;
    std::size_t at = 0;
    while (at <= text.size()) {
        const std::size_t dot = text.find('.', at);
        std::string_view part =
            text.substr(at, dot == std::string_view::npos ? text.npos : dot - at);
        const std::size_t digits = part.find_first_not_of("0123456789");
        part = part.substr(0, digits);
        part.remove_prefix(std::min(part.find_first_not_of('0'), part.size()));
        parts.push_back(part);
        if (dot == std::string_view::npos) {
            break;
        }
        at = dot + 1;
    }
    while (!parts.empty() && parts.back().empty()) {
        parts.pop_back();
    }
    return parts;
}

int compareNumbers(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    const int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

void readSparkleAttributes(const QXmlStreamAttributes& attributes, AppcastItem& item) {
    const auto version = attributes.value(sparkleNamespace, QStringLiteral("version"));
    const auto shortVersion =
        attributes.value(sparkleNamespace, QStringLiteral("shortVersionString"));
    if (item.version.empty() && !version.isEmpty()) {
        item.version = version.toString().trimmed().toStdString();
    }
    if (item.shortVersion.empty() && !shortVersion.isEmpty()) {
        item.shortVersion = shortVersion.toString().trimmed().toStdString();
    }
}

AppcastItem readItem(QXmlStreamReader& reader) {
    AppcastItem item;
    std::string link;
    while (reader.readNextStartElement()) {
        const auto name = reader.name();
        const bool sparkle = reader.namespaceUri() == sparkleNamespace;
        if (sparkle && name == QStringLiteral("version")) {
            item.version = reader.readElementText().trimmed().toStdString();
        } else if (sparkle && name == QStringLiteral("shortVersionString")) {
            item.shortVersion = reader.readElementText().trimmed().toStdString();
        } else if (sparkle && name == QStringLiteral("releaseNotesLink")) {
            item.releaseNotesLink = reader.readElementText().trimmed().toStdString();
        } else if (reader.namespaceUri().isEmpty() && name == QStringLiteral("title")) {
            item.title = reader.readElementText().trimmed().toStdString();
        } else if (reader.namespaceUri().isEmpty() && name == QStringLiteral("link")) {
            link = reader.readElementText().trimmed().toStdString();
        } else if (reader.namespaceUri().isEmpty() && name == QStringLiteral("enclosure")) {
            item.downloadLink =
                reader.attributes().value(QStringLiteral("url")).toString().toStdString();
            readSparkleAttributes(reader.attributes(), item);
            reader.skipCurrentElement();
        } else {
            reader.skipCurrentElement();
        }
    }
    if (item.downloadLink.empty()) {
        item.downloadLink = link;
    }
    if (item.shortVersion.empty()) {
        item.shortVersion = item.version;
    }
    return item;
}

} // namespace

AppcastFeed::Parsed AppcastFeed::parse(const QByteArray& xml) {
    QXmlStreamReader reader(xml);
    std::vector<AppcastItem> items;
    if (!reader.readNextStartElement() || reader.name() != QStringLiteral("rss")) {
        if (reader.hasError()) {
            return "The update feed is not valid XML: " + reader.errorString().toStdString();
        }
        return std::string("The update feed is not an appcast");
    }
    bool channel = false;
    while (reader.readNextStartElement()) {
        if (reader.name() != QStringLiteral("channel")) {
            reader.skipCurrentElement();
            continue;
        }
        channel = true;
        while (reader.readNextStartElement()) {
            if (reader.name() == QStringLiteral("item")) {
                AppcastItem item = readItem(reader);
                if (!item.version.empty()) {
                    items.push_back(std::move(item));
                }
            } else {
                reader.skipCurrentElement();
            }
        }
    }
    if (reader.hasError()) {
        return "The update feed is not valid XML: " + reader.errorString().toStdString() +
               " (line " + std::to_string(reader.lineNumber()) + ")";
    }
    if (!channel) {
        return std::string("The update feed is not an appcast");
    }
    return items;
}

const AppcastItem* AppcastFeed::newest(const std::vector<AppcastItem>& items) {
    const AppcastItem* best = nullptr;
    for (const AppcastItem& item : items) {
        if (best == nullptr || compareVersions(item.version, best->version) > 0) {
            best = &item;
        }
    }
    return best;
}

int AppcastFeed::compareVersions(std::string_view a, std::string_view b) {
    const auto left = components(a);
    const auto right = components(b);
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        if (const int c = compareNumbers(left[i], right[i]); c != 0) {
            return c;
        }
    }
    if (left.size() == right.size()) {
        return 0;
    }
    return left.size() < right.size() ? -1 : 1;
}

} // namespace hg
