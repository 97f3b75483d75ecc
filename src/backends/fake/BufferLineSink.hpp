#pragma once

#include "ports/LineSink.hpp"

#include <string>
#include <utility>
#include <vector>

namespace hg {

// Collects diagnostic lines, optionally passing them on to another sink.
class BufferLineSink final : public LineSink {
public:
    BufferLineSink() = default;
    explicit BufferLineSink(LineSink* next) : next_(next) {}

    void line(std::string_view text) override {
        lines_.emplace_back(text);
        if (next_ != nullptr) {
            next_->line(text);
        }
    }

    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
    void clear() { lines_.clear(); }
    // Returns the lines collected so far and starts afresh.
    std::vector<std::string> take() { return std::exchange(lines_, {}); }

private:
    LineSink* next_ = nullptr;
    std::vector<std::string> lines_;
};

} // namespace hg
