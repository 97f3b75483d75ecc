#pragma once

#include "ports/UserDefaults.hpp"

#include <QString>
#include <memory>

class QSettings;

namespace hg {

// The user-defaults store over QSettings: CFPreferences on macOS (types kept),
// an INI file under the XDG config folder on Linux. INI keeps only texts and
// data, so a stored bool reads back as the text "true" and a number as its
// decimal text; the typed reads of UserDefaults turn those back. Every write
// is flushed at once so that a crash loses nothing. Main thread only.
class QtUserDefaults final : public UserDefaults {
public:
    // The application's own store (organization and application names of the
    // running QCoreApplication).
    QtUserDefaults();
    // An INI file at `iniPath`, for tests and tools.
    explicit QtUserDefaults(const QString& iniPath);
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

    // The underlying settings, for values the shell keeps beside the
    // program's own (window frames).
    [[nodiscard]] QSettings& settings() { return *settings_; }

private:
    std::unique_ptr<QSettings> settings_;
};

} // namespace hg
