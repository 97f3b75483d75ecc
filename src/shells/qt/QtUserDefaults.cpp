#include "shells/qt/QtUserDefaults.hpp"

#include <QByteArray>
#include <QSettings>
#include <QVariant>

namespace hg {

namespace {

QString keyText(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

QVariant toVariant(const DefaultsValue& value) {
    if (const auto* b = std::get_if<bool>(&value)) {
        return QVariant(*b);
    }
    if (const auto* i = std::get_if<std::int64_t>(&value)) {
        return QVariant(static_cast<qlonglong>(*i));
    }
    if (const auto* d = std::get_if<double>(&value)) {
        return QVariant(*d);
    }
    if (const auto* s = std::get_if<std::string>(&value)) {
        return QVariant(QString::fromUtf8(s->data(), static_cast<qsizetype>(s->size())));
    }
    const auto& bytes = std::get<Bytes>(value);
    return QVariant(QByteArray(reinterpret_cast<const char*>(bytes.data()),
                               static_cast<qsizetype>(bytes.size())));
}

} // namespace

QtUserDefaults::QtUserDefaults() : settings_(std::make_unique<QSettings>()) {}

QtUserDefaults::QtUserDefaults(const QString& iniPath)
    : settings_(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {}

QtUserDefaults::~QtUserDefaults() = default;

std::optional<DefaultsValue> QtUserDefaults::objectForKey(std::string_view key) const {
    const QVariant value = settings_->value(keyText(key));
    switch (value.typeId()) {
    case QMetaType::Bool:
        return DefaultsValue{value.toBool()};
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return DefaultsValue{static_cast<std::int64_t>(value.toLongLong())};
    case QMetaType::Double:
    case QMetaType::Float:
        return DefaultsValue{value.toDouble()};
    case QMetaType::QString:
        return DefaultsValue{value.toString().toStdString()};
    case QMetaType::QByteArray: {
        const QByteArray data = value.toByteArray();
        return DefaultsValue{Bytes(data.begin(), data.end())};
    }
    default:
        // Absent keys, and values of kinds the program never writes (an INI
        // line edited into a list, a date): both read as absent.
        return std::nullopt;
    }
}

std::optional<Bytes> QtUserDefaults::dataForKey(std::string_view key, std::size_t maxBytes) const {
    // The variant shares the settings' own bytes: nothing is copied to look.
    const QVariant value = settings_->value(keyText(key));
    if (value.typeId() != QMetaType::QByteArray) {
        return std::nullopt;
    }
    const QByteArray data = value.toByteArray();
    if (static_cast<std::size_t>(data.size()) > maxBytes) {
        return std::nullopt;
    }
    return Bytes(data.begin(), data.end());
}

void QtUserDefaults::setObject(std::string_view key, const DefaultsValue& value) {
    settings_->setValue(keyText(key), toVariant(value));
    settings_->sync();
}

void QtUserDefaults::removeObject(std::string_view key) {
    settings_->remove(keyText(key));
    settings_->sync();
}

} // namespace hg
