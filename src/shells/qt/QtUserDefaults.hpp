#pragma once

#include "ports/LineSink.hpp"
#include "ports/UserDefaults.hpp"

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace hg {

// The user-defaults store over an INI file through QSettings (on Linux under
// the XDG config folder). INI keeps only texts and data, so a stored bool
// reads back as the text "true" and a number as its decimal text; the typed
// reads of UserDefaults turn those back. Main thread only.
//
// Other programs may write the file at any time (another instance, an editor,
// a script), so every read looks at the file again (a stat while it is
// unchanged), and every write is a read-modify-write of the file as it is now,
// under the same lock file QSettings takes (FILE.lock). QSettings itself waits
// for that lock without limit; this store waits at most `lockWait`. When the
// lock cannot be had, the change is kept here, read back from here, said in
// one line, and written once the lock is free (tried every `retryInterval`,
// and at each further change without waiting).
class QtUserDefaults final : public UserDefaults {
public:
    static constexpr std::chrono::milliseconds lockWait{500};
    static constexpr std::chrono::milliseconds retryInterval{1000};

    // The application's own store (organization and application names of the
    // running QCoreApplication).
    explicit QtUserDefaults(LineSink& out);
    // An INI file at `iniPath`, for tests and tools.
    QtUserDefaults(const QString& iniPath, LineSink& out);
    // Tries once more, without waiting, to write what is not yet written.
    ~QtUserDefaults() override;
    QtUserDefaults(const QtUserDefaults&) = delete;
    QtUserDefaults& operator=(const QtUserDefaults&) = delete;

    [[nodiscard]] std::optional<DefaultsValue> objectForKey(std::string_view key) const override;
    // Measures a stored data value before copying it.
    [[nodiscard]] std::optional<Bytes> dataForKey(std::string_view key,
                                                  std::size_t maxBytes) const override;
    using UserDefaults::dataForKey;
    void setObject(std::string_view key, const DefaultsValue& value) override;
    void removeObject(std::string_view key) override;

    // Values the shell keeps beside the program's own (window frames), by
    // their QSettings key; written like the others.
    [[nodiscard]] QVariant value(const QString& key) const;
    void setValue(const QString& key, const QVariant& value);

    [[nodiscard]] const QString& fileName() const { return path_; }
    // Changes kept here because the file could not be written yet.
    [[nodiscard]] std::size_t unsavedCount() const { return unsaved_.size(); }

private:
    QtUserDefaults(const QString& path, QSettings::Format format, LineSink& out);
    void change(const QString& key, std::optional<QVariant> value);
    // Writes the unsaved changes; false (and said once) when it could not.
    bool save(std::chrono::milliseconds wait);
    [[nodiscard]] QString writeUnsaved() const;

    // What identifies one version of the file: inode, size, modification time.
    struct FileStamp {
        std::uint64_t inode = 0;
        std::int64_t size = -1;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        bool operator==(const FileStamp&) const = default;
    };

    QString path_;
    QByteArray pathBytes_;
    QSettings::Format format_;
    LineSink& out_;
    // Reads only: it never holds a change, so its sync never takes the lock.
    std::unique_ptr<QSettings> reader_;
    mutable FileStamp seen_;
    // Key to new value; none for a removal.
    std::map<QString, std::optional<QVariant>> unsaved_;
    QTimer retry_;
    bool failing_ = false;
};

} // namespace hg
