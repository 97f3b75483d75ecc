#pragma once

#include "ports/UserDefaults.hpp"

#include <memory>
#include <string>

namespace hg {

// The user-defaults port over NSUserDefaults: the standard user defaults, or
// the named suite (a domain of its own, for tests). Values keep their kinds:
// booleans, integers, reals, strings and data. Stored values of other kinds
// (arrays, dictionaries, dates) read as present, as the integer 0.
class MacUserDefaults final : public UserDefaults {
public:
    explicit MacUserDefaults(std::string suiteName = {});
    ~MacUserDefaults() override;
    MacUserDefaults(const MacUserDefaults&) = delete;
    MacUserDefaults& operator=(const MacUserDefaults&) = delete;

    [[nodiscard]] std::optional<DefaultsValue> objectForKey(std::string_view key) const override;
    // A string that is not UTF-8 is not stored.
    void setObject(std::string_view key, const DefaultsValue& value) override;
    void removeObject(std::string_view key) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
