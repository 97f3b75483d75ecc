#include "shells/qt/QtUserDefaults.hpp"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <cstdio>
#include <sys/stat.h>

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

// Why the lock could not be had, for the diagnostic line.
QString lockTrouble(QLockFile::LockError error) {
    switch (error) {
    case QLockFile::LockFailedError:
        return QStringLiteral("is held by another process");
    case QLockFile::PermissionError:
        return QStringLiteral("cannot be created (permission denied)");
    default:
        return QStringLiteral("cannot be created");
    }
}

} // namespace

QtUserDefaults::QtUserDefaults(LineSink& out)
    : QtUserDefaults(QSettings().fileName(), QSettings::NativeFormat, out) {}

QtUserDefaults::QtUserDefaults(const QString& iniPath, LineSink& out)
    : QtUserDefaults(iniPath, QSettings::IniFormat, out) {}

QtUserDefaults::QtUserDefaults(const QString& path, QSettings::Format format, LineSink& out)
    : path_(path), pathBytes_(QFile::encodeName(path)), format_(format), out_(out),
      reader_(std::make_unique<QSettings>(path, format)) {
    retry_.setInterval(retryInterval);
    QObject::connect(&retry_, &QTimer::timeout, [this] { save(std::chrono::milliseconds(0)); });
}

QtUserDefaults::~QtUserDefaults() {
    if (!unsaved_.empty() && !save(std::chrono::milliseconds(0))) {
        out_.line("Settings: " + std::to_string(unsaved_.size()) +
                  " changes not saved at quit: " + path_.toStdString() + " could not be written");
    }
}

QVariant QtUserDefaults::value(const QString& key) const {
    if (const auto it = unsaved_.find(key); it != unsaved_.end()) {
        return it->second.value_or(QVariant());
    }
    // Reads the file again when it has changed since the last look (a stat
    // tells, far cheaper than QSettings' own look); with no change of its
    // own held, the reader never waits for the lock.
    struct stat now {};
    const FileStamp stamp =
        ::stat(pathBytes_.constData(), &now) == 0
            ? FileStamp{now.st_ino, now.st_size, now.st_mtim.tv_sec, now.st_mtim.tv_nsec}
            : FileStamp{};
    if (stamp != seen_) {
        reader_->sync();
        seen_ = stamp;
    }
    return reader_->value(key);
}

void QtUserDefaults::setValue(const QString& key, const QVariant& value) {
    change(key, value);
}

std::optional<DefaultsValue> QtUserDefaults::objectForKey(std::string_view key) const {
    const QVariant value = this->value(keyText(key));
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
    const QVariant value = this->value(keyText(key));
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
    change(keyText(key), toVariant(value));
}

void QtUserDefaults::removeObject(std::string_view key) {
    change(keyText(key), std::nullopt);
}

void QtUserDefaults::change(const QString& key, std::optional<QVariant> value) {
    unsaved_[key] = std::move(value);
    // Once the lock has been refused, further changes do not wait for it
    // again: the retries carry them.
    save(failing_ ? std::chrono::milliseconds(0) : lockWait);
}

bool QtUserDefaults::save(std::chrono::milliseconds wait) {
    if (unsaved_.empty()) {
        retry_.stop();
        return true;
    }
    QDir().mkpath(QFileInfo(path_).absolutePath());
    QLockFile lock(path_ + QStringLiteral(".lock"));
    QString trouble;
    if (!lock.tryLock(wait)) {
        trouble = path_ + QStringLiteral(".lock ") + lockTrouble(lock.error());
    } else {
        trouble = writeUnsaved();
    }
    if (trouble.isEmpty()) {
        unsaved_.clear();
        retry_.stop();
        if (failing_) {
            out_.line("Settings: saved " + path_.toStdString());
            failing_ = false;
        }
        return true;
    }
    if (!failing_) {
        out_.line("Settings: not saved yet: " + trouble.toStdString() + "; trying again every " +
                  std::to_string(retryInterval.count()) + " ms");
        failing_ = true;
    }
    if (!retry_.isActive()) {
        retry_.start();
    }
    return false;
}

QString QtUserDefaults::writeUnsaved() const {
    // The file as it is now, changed in a copy beside it, then put in its
    // place in one rename: a reader never sees half a file. QSettings writes
    // the copy (and takes the copy's own lock, which nobody else knows).
    const QFileInfo info(path_);
    const QString target = info.isSymLink() ? info.symLinkTarget() : path_;
    const QString draft = target + QStringLiteral(".saving");
    QFile::remove(draft);
    if (QFile::exists(target) && !QFile::copy(target, draft)) {
        return QStringLiteral("cannot copy ") + target;
    }
    {
        QSettings writer(draft, format_);
        for (const auto& [key, value] : unsaved_) {
            if (value) {
                writer.setValue(key, *value);
            } else {
                writer.remove(key);
            }
        }
        writer.sync();
        if (writer.status() != QSettings::NoError) {
            QFile::remove(draft);
            return QStringLiteral("cannot write ") + draft;
        }
    }
    if (!QFile::exists(draft)) {
        // Nothing to write and no file before: nothing to put in place.
        return {};
    }
    if (std::rename(QFile::encodeName(draft).constData(), QFile::encodeName(target).constData()) !=
        0) {
        QFile::remove(draft);
        return QStringLiteral("cannot replace ") + target;
    }
    return {};
}

} // namespace hg
