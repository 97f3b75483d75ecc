#include "hotkey/Hotkey.hpp"

#include "hotkey/KeyName.hpp"
#include "ports/ModifierKeys.hpp"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace hg {

namespace {

// A JSON number as an unsigned integer of type T, the way the platform's
// keyed decoder reads it: non-negative, whole and in range. Integral numbers
// written with a fraction or exponent ("40.0", "4e1") are whole and accepted.
template <typename T> std::optional<T> wholeNumber(const nlohmann::json& value) {
    constexpr auto max = std::numeric_limits<T>::max();
    if (value.is_number_unsigned()) {
        const auto u = value.get<std::uint64_t>();
        if (u > max) {
            return std::nullopt;
        }
        return static_cast<T>(u);
    }
    if (value.is_number_integer()) {
        const auto i = value.get<std::int64_t>();
        if (i < 0 || static_cast<std::uint64_t>(i) > max) {
            return std::nullopt;
        }
        return static_cast<T>(i);
    }
    if (value.is_number_float()) {
        const double d = value.get<double>();
        // 2^digits is exact in a double; anything at or above it is out of range.
        const double limit = std::ldexp(1.0, std::numeric_limits<T>::digits);
        if (!(d >= 0.0) || !(d < limit) || std::floor(d) != d) {
            return std::nullopt;
        }
        return static_cast<T>(d);
    }
    return std::nullopt;
}

void appendModifierNames(std::string& out, std::uint64_t modifiers) {
    constexpr std::pair<std::uint64_t, const char*> names[] = {
        {modifier::control, "Ctrl+"},  {modifier::option, "Alt+"},  {modifier::shift, "Shift+"},
        {modifier::command, "Super+"}, {modifier::function, "Fn+"},
    };
    for (const auto& [bit, name] : names) {
        if ((modifiers & bit) != 0) {
            out += name;
        }
    }
}

void appendModifierSymbols(std::string& out, std::uint64_t modifiers) {
    if ((modifiers & modifier::control) != 0) {
        out += "\u2303"; // ⌃
    }
    if ((modifiers & modifier::option) != 0) {
        out += "\u2325"; // ⌥
    }
    if ((modifiers & modifier::shift) != 0) {
        out += "\u21E7"; // ⇧
    }
    if ((modifiers & modifier::command) != 0) {
        out += "\u2318"; // ⌘
    }
    if ((modifiers & modifier::function) != 0) {
        out += "fn";
    }
}

} // namespace

Hotkey Hotkey::load(const UserDefaults& defaults) {
    const auto data = defaults.dataForKey(defaultsKey, maxEncodedBytes);
    if (!data) {
        return defaultHotkey();
    }
    // The store is read on every key event and once a second, but its bytes
    // change only when a shortcut is recorded: they are decoded once per
    // change, and a value too long to be a shortcut is not even copied.
    struct LastDecoded {
        Bytes bytes;
        Hotkey hotkey;
    };
    static std::optional<LastDecoded> last;
    if (!last || last->bytes != *data) {
        const std::string_view text(reinterpret_cast<const char*>(data->data()), data->size());
        last = LastDecoded{*data, fromJson(text).value_or(defaultHotkey())};
    }
    return last->hotkey;
}

void Hotkey::save(UserDefaults& defaults) const {
    const std::string json = toJson();
    defaults.setData(defaultsKey, Bytes(json.begin(), json.end()));
}

std::string Hotkey::toJson() const {
    // nlohmann::json keeps members sorted by name, which puts keyCode first.
    nlohmann::json j;
    j["keyCode"] = keyCode;
    j["modifiers"] = modifiers;
    return j.dump();
}

std::optional<Hotkey> Hotkey::fromJson(std::string_view text) {
    // The parser stops at a NUL byte as at the end of its input; JSON text
    // never holds one, so anything after it would pass unread.
    if (text.size() > maxEncodedBytes || text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    const auto j = nlohmann::json::parse(text, nullptr, false);
    if (!j.is_object()) {
        return std::nullopt; // also the discarded value of a parse error
    }
    const auto keyCodeIt = j.find("keyCode");
    const auto modifiersIt = j.find("modifiers");
    if (keyCodeIt == j.end() || modifiersIt == j.end()) {
        return std::nullopt;
    }
    const auto keyCode = wholeNumber<std::uint16_t>(*keyCodeIt);
    const auto modifiers = wholeNumber<std::uint64_t>(*modifiersIt);
    if (!keyCode || !modifiers) {
        return std::nullopt;
    }
    return Hotkey{*keyCode, *modifiers};
}

std::string Hotkey::displayString(const KeyboardLayout* layout) const {
    std::string out;
    const bool named =
        layout != nullptr && layout->modifierNotation() == KeyboardLayout::ModifierNotation::names;
    if (named) {
        appendModifierNames(out, modifiers);
    } else {
        appendModifierSymbols(out, modifiers);
    }
    if (keyCode != noKey) {
        out += keyName(keyCode, layout);
    } else if (out.empty()) {
        return "None";
    } else if (named) {
        out.pop_back(); // modifiers alone: no "+" after the last
    }
    return out;
}

} // namespace hg
