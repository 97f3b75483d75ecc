#pragma once

#include "ports/UserDefaults.hpp"

#include <map>

namespace hg {

// An in-memory user-defaults store with typed values. Records how many writes
// it was asked for.
class FakeUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<DefaultsValue> objectForKey(std::string_view key) const override {
        const auto it = values_.find(key);
        if (it == values_.end()) {
            return std::nullopt;
        }
        return it->second;
    }
    // Measures a stored data value before copying it.
    [[nodiscard]] std::optional<Bytes> dataForKey(std::string_view key,
                                                  std::size_t maxBytes) const override {
        const auto it = values_.find(key);
        const auto* data = it == values_.end() ? nullptr : std::get_if<Bytes>(&it->second);
        if (data == nullptr || data->size() > maxBytes) {
            return std::nullopt;
        }
        return *data;
    }
    using UserDefaults::dataForKey;

    void setObject(std::string_view key, const DefaultsValue& value) override {
        ++writes_;
        values_.insert_or_assign(std::string(key), value);
    }
    void removeObject(std::string_view key) override {
        ++writes_;
        if (const auto it = values_.find(key); it != values_.end()) {
            values_.erase(it);
        }
    }

    [[nodiscard]] int writeCount() const { return writes_; }
    [[nodiscard]] const std::map<std::string, DefaultsValue, std::less<>>& all() const {
        return values_;
    }

private:
    std::map<std::string, DefaultsValue, std::less<>> values_;
    int writes_ = 0;
};

} // namespace hg
