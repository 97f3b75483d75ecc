#pragma once

#include <string_view>

namespace hg {

// Where diagnostic lines go: standard output on a real desktop, a buffer in
// tests. Every line is written whole, followed by a line feed, and flushed.
class LineSink {
public:
    virtual ~LineSink() = default;

    // `text` carries no line feed of its own. Never fails; a closed output
    // drops the line.
    virtual void line(std::string_view text) = 0;
};

} // namespace hg
