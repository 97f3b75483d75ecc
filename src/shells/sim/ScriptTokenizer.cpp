#include "shells/sim/ScriptTokenizer.hpp"

#include <charconv>
#include <limits>

namespace hg::sim {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

ScriptLine::ScriptLine(std::string_view raw) : raw_(raw) {
    std::size_t i = 0;
    const std::size_t n = raw_.size();
    while (i < n && isBlank(raw_[i])) {
        ++i;
    }
    if (i == n || raw_[i] == '#') {
        return;
    }
    while (i < n) {
        const std::size_t begin = i;
        std::string text;
        if (raw_[i] == '"') {
            const std::size_t close = raw_.find('"', i + 1);
            if (close == std::string::npos) {
                error_ = "unterminated quote";
                errorBegin_ = begin;
                return;
            }
            text = raw_.substr(i + 1, close - i - 1);
            i = close + 1;
            if (i < n && !isBlank(raw_[i])) {
                error_ = "text after closing quote";
                errorBegin_ = begin;
                return;
            }
        } else {
            while (i < n && !isBlank(raw_[i])) {
                ++i;
            }
            text = raw_.substr(begin, i - begin);
        }
        words_.push_back(Word{std::move(text), begin});
        while (i < n && isBlank(raw_[i])) {
            ++i;
        }
    }
}

void ScriptLine::checkWords(std::size_t count) const {
    if (!error_.empty() && count > words_.size()) {
        throw ScriptError(error_);
    }
}

std::string ScriptLine::rest(std::size_t index) const {
    std::size_t begin = 0;
    if (index < words_.size()) {
        begin = words_[index].begin;
    } else if (index == words_.size() && !error_.empty()) {
        begin = errorBegin_; // a badly quoted TEXT is still TEXT, taken as written
    } else {
        return {};
    }
    std::string text = raw_.substr(begin);
    // Only a line ending survives "as written" at the end; drop it.
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) {
        text.pop_back();
    }
    return text;
}

std::string ScriptLine::trimmed() const {
    std::size_t begin = 0;
    std::size_t end = raw_.size();
    while (begin < end && isBlank(raw_[begin])) {
        ++begin;
    }
    while (end > begin && isBlank(raw_[end - 1])) {
        --end;
    }
    return raw_.substr(begin, end - begin);
}

std::optional<std::uint64_t> parseUnsigned(std::string_view text) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    const bool negative = !text.empty() && text[0] == '-';
    if (negative) {
        text.remove_prefix(1);
    }
    const auto magnitude = parseUnsigned(text);
    if (!magnitude) {
        return std::nullopt;
    }
    constexpr auto max = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (negative) {
        if (*magnitude > max + 1) {
            return std::nullopt;
        }
        return *magnitude == max + 1 ? std::numeric_limits<std::int64_t>::min()
                                     : -static_cast<std::int64_t>(*magnitude);
    }
    if (*magnitude > max) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*magnitude);
}

std::optional<Duration> parseSeconds(std::string_view text) {
    const std::size_t dot = text.find('.');
    const std::string_view whole = text.substr(0, dot);
    const std::string_view fraction =
        dot == std::string_view::npos ? std::string_view() : text.substr(dot + 1);
    if ((whole.empty() && fraction.empty()) || fraction.size() > 6) {
        return std::nullopt;
    }
    auto digitsOnly = [](std::string_view s) {
        for (const char c : s) {
            if (c < '0' || c > '9') {
                return false;
            }
        }
        return true;
    };
    if (!digitsOnly(whole) || !digitsOnly(fraction) || whole.size() > 12) {
        return std::nullopt;
    }
    std::int64_t micros = 0;
    for (const char c : whole) {
        micros = micros * 10 + (c - '0');
    }
    micros *= 1'000'000;
    std::int64_t scale = 100'000;
    for (const char c : fraction) {
        micros += (c - '0') * scale;
        scale /= 10;
    }
    return Duration(micros);
}

} // namespace hg::sim
