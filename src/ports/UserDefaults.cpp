#include "ports/UserDefaults.hpp"

#include <charconv>
#include <cmath>

namespace hg {

bool textBoolValue(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n')) {
        ++i;
    }
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        ++i;
    }
    while (i < text.size() && text[i] == '0') {
        ++i;
    }
    if (i >= text.size()) {
        return false;
    }
    const char c = text[i];
    return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
}

bool UserDefaults::boolForKey(std::string_view key) const {
    const auto value = objectForKey(key);
    if (!value) {
        return false;
    }
    if (const auto* b = std::get_if<bool>(&*value)) {
        return *b;
    }
    if (const auto* i = std::get_if<std::int64_t>(&*value)) {
        return *i != 0;
    }
    if (const auto* d = std::get_if<double>(&*value)) {
        return *d != 0.0;
    }
    if (const auto* s = std::get_if<std::string>(&*value)) {
        return textBoolValue(*s);
    }
    return false;
}

std::int64_t UserDefaults::integerForKey(std::string_view key) const {
    const auto value = objectForKey(key);
    if (!value) {
        return 0;
    }
    if (const auto* b = std::get_if<bool>(&*value)) {
        return *b ? 1 : 0;
    }
    if (const auto* i = std::get_if<std::int64_t>(&*value)) {
        return *i;
    }
    if (const auto* d = std::get_if<double>(&*value)) {
        return std::isfinite(*d) ? static_cast<std::int64_t>(*d) : 0;
    }
    if (const auto* s = std::get_if<std::string>(&*value)) {
        std::size_t i = 0;
        while (i < s->size() && ((*s)[i] == ' ' || (*s)[i] == '\t')) {
            ++i;
        }
        std::int64_t out = 0;
        std::from_chars(s->data() + i, s->data() + s->size(), out);
        return out;
    }
    return 0;
}

std::optional<Bytes> UserDefaults::dataForKey(std::string_view key) const {
    auto value = objectForKey(key);
    if (!value) {
        return std::nullopt;
    }
    if (auto* data = std::get_if<Bytes>(&*value)) {
        return std::move(*data);
    }
    return std::nullopt;
}

std::optional<Bytes> UserDefaults::dataForKey(std::string_view key, std::size_t maxBytes) const {
    auto data = dataForKey(key);
    if (data && data->size() > maxBytes) {
        return std::nullopt;
    }
    return data;
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
    auto value = objectForKey(key);
    if (!value) {
        return std::nullopt;
    }
    if (auto* s = std::get_if<std::string>(&*value)) {
        return std::move(*s);
    }
    if (const auto* i = std::get_if<std::int64_t>(&*value)) {
        return std::to_string(*i);
    }
    if (const auto* d = std::get_if<double>(&*value)) {
        return std::to_string(*d);
    }
    return std::nullopt;
}

} // namespace hg
