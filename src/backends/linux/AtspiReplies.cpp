#include "backends/linux/AtspiReplies.hpp"

#include <QDBusArgument>
#include <QDBusObjectPath>

namespace hg {

namespace {

const QString nullObjectPath = QStringLiteral("/org/a11y/atspi/null");

// The marshalled value of a reply argument of a composite D-Bus type; none
// for a plain value.
std::optional<QDBusArgument> asArgument(const QVariant& argument) {
    if (argument.typeId() != qMetaTypeId<QDBusArgument>()) {
        return std::nullopt;
    }
    return argument.value<QDBusArgument>();
}

} // namespace

std::optional<QList<AtspiObjectRef>> readObjectRefs(const QVariant& argument) {
    const auto arg = asArgument(argument);
    if (!arg || arg->currentSignature() != QLatin1String("a(so)")) {
        return std::nullopt;
    }
    QList<AtspiObjectRef> refs;
    arg->beginArray();
    while (!arg->atEnd()) {
        AtspiObjectRef ref;
        QDBusObjectPath path;
        arg->beginStructure();
        *arg >> ref.service >> path;
        arg->endStructure();
        ref.path = path.path();
        if (ref.path != nullObjectPath) {
            refs.push_back(std::move(ref));
        }
    }
    arg->endArray();
    return refs;
}

std::optional<QList<std::uint32_t>> readStateWords(const QVariant& argument) {
    const auto arg = asArgument(argument);
    if (!arg || arg->currentSignature() != QLatin1String("au")) {
        return std::nullopt;
    }
    QList<std::uint32_t> words;
    arg->beginArray();
    while (!arg->atEnd()) {
        uint word = 0;
        *arg >> word;
        words.push_back(word);
    }
    arg->endArray();
    return words;
}

std::optional<bool> readHasArea(const QVariant& argument) {
    const auto arg = asArgument(argument);
    if (!arg || arg->currentSignature() != QLatin1String("(iiii)")) {
        return std::nullopt;
    }
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    arg->beginStructure();
    *arg >> x >> y >> width >> height;
    arg->endStructure();
    return width > 0 && height > 0;
}

std::optional<int> readActionCount(const QVariant& argument) {
    const auto arg = asArgument(argument);
    if (!arg || arg->currentSignature() != QLatin1String("a(sss)")) {
        return std::nullopt;
    }
    int count = 0;
    arg->beginArray();
    while (!arg->atEnd()) {
        QString name;
        QString description;
        QString keyBinding;
        arg->beginStructure();
        *arg >> name >> description >> keyBinding;
        arg->endStructure();
        ++count;
    }
    arg->endArray();
    return count;
}

bool hasState(const QList<std::uint32_t>& words, unsigned bit) {
    const auto word = static_cast<qsizetype>(bit / 32);
    return word < words.size() && (words[word] & (1U << (bit % 32))) != 0;
}

bool isOutOfSight(const QList<std::uint32_t>& words, std::optional<bool> hasArea) {
    return !hasState(words, atspiState::visible) && hasArea == false;
}

} // namespace hg
