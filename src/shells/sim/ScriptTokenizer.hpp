#pragma once

#include "ports/Clock.hpp"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace hg::sim {

// A mistake in the script itself; the run stops with its message.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One word of a script line and where it stands in the line, so that a TEXT
// argument can be taken from the raw line as written.
struct Word {
    std::string text;
    std::size_t begin = 0; // offset of the word's first character (its quote, if quoted)
};

// One script line split into words. Words are separated by blanks (spaces
// and tabs); a word that starts with a double quote runs to the next double
// quote and may hold blanks. A badly quoted word ends the words (a TEXT
// argument before it is still usable): checkWords() reports it.
class ScriptLine {
public:
    explicit ScriptLine(std::string_view raw);

    // Throws ScriptError when a badly quoted word stands among the first
    // `count` words (all words by default).
    void checkWords(std::size_t count = static_cast<std::size_t>(-1)) const;

    // Blank, or a comment (first non-blank character '#').
    [[nodiscard]] bool isEmpty() const { return words_.empty() && error_.empty(); }
    [[nodiscard]] std::size_t size() const { return words_.size(); }
    [[nodiscard]] const std::string& word(std::size_t index) const { return words_.at(index).text; }
    [[nodiscard]] const std::vector<Word>& words() const { return words_; }

    // The raw line from word `index` to its end, leading blanks dropped; empty
    // when the line has fewer words.
    [[nodiscard]] std::string rest(std::size_t index) const;

    // The line as written, without blanks at either end.
    [[nodiscard]] std::string trimmed() const;

private:
    std::string raw_;
    std::vector<Word> words_;
    std::string error_;          // why the word after the last in words_ could not be read
    std::size_t errorBegin_ = 0; // where that word starts
};

// Decimal, or hexadecimal after "0x"; an optional leading minus. Nothing for
// anything else, or for a value that does not fit.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);
[[nodiscard]] std::optional<std::uint64_t> parseUnsigned(std::string_view text);

// Non-negative decimal seconds ("1", "0.15", ".5"), exactly, to the microsecond;
// more than six decimals, signs, exponents and anything else give nothing.
[[nodiscard]] std::optional<Duration> parseSeconds(std::string_view text);

} // namespace hg::sim
