#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hg {

using Bytes = std::vector<std::uint8_t>;

// A stored value keeps its kind: bool, integer, real, text or data.
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, Bytes>;

// The user-defaults store: a persistent map from key to typed value.
//
// Backends implement the three primitives; the typed reads below follow the
// platform's user-defaults conventions on top of them so that every backend
// answers alike (a bool read of the text "YES" is true, of an absent key false).
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    // The stored value, or nothing when the key is absent or the backend cannot
    // read it (a corrupt file reads as absent; it never throws).
    [[nodiscard]] virtual std::optional<DefaultsValue> objectForKey(std::string_view key) const = 0;

    // Stores a value. A backend that cannot write keeps the old value, or
    // answers with the new one and writes it once it can.
    virtual void setObject(std::string_view key, const DefaultsValue& value) = 0;

    // Removes a key; absent keys are ignored.
    virtual void removeObject(std::string_view key) = 0;

    [[nodiscard]] bool hasObject(std::string_view key) const {
        return objectForKey(key).has_value();
    }

    // false when absent; numbers are true when nonzero; texts read like the
    // platform's text-to-bool conversion ("YES", "true", "1" are true).
    [[nodiscard]] bool boolForKey(std::string_view key) const;

    // 0 when absent or not convertible; bools are 0/1; reals are truncated;
    // texts are read as a leading decimal integer.
    [[nodiscard]] std::int64_t integerForKey(std::string_view key) const;

    // The bytes, only when the stored value is a data value.
    [[nodiscard]] std::optional<Bytes> dataForKey(std::string_view key) const;

    // As dataForKey, and nothing for a data value longer than `maxBytes`. A
    // backend that can tell a value's size without copying it overrides this,
    // so that an oversized value costs its readers nothing.
    [[nodiscard]] virtual std::optional<Bytes> dataForKey(std::string_view key,
                                                          std::size_t maxBytes) const;

    // The text, for text values and numbers (written in decimal); nothing otherwise.
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;

    void setBool(std::string_view key, bool value) { setObject(key, DefaultsValue{value}); }
    void setData(std::string_view key, const Bytes& value) { setObject(key, DefaultsValue{value}); }
};

// The text-to-bool rule of the platform: skip leading blanks, an optional sign
// and zeros; true when the next character is one of Y y T t or a digit 1-9.
[[nodiscard]] bool textBoolValue(std::string_view text);

} // namespace hg
