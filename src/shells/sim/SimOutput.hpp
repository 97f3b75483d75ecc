#pragma once

#include "ports/LineSink.hpp"

#include <ostream>
#include <string_view>

namespace hg::sim {

// Standard output of a simulation: the application's own lines, and the
// simulator's observations ("= ..."), interleaved in the order they happen.
// Lines are buffered, not flushed one by one: a long run prints many.
class SimOutput final : public LineSink {
public:
    SimOutput(std::ostream& stream, bool trace) : stream_(&stream), trace_(trace) {}

    // A line of the application.
    void line(std::string_view text) override { write("", text); }

    // An observation, printed only when tracing.
    void observe(std::string_view text) {
        if (trace_) {
            write("= ", text);
        }
    }
    // An observation printed whether or not tracing (the answer to a "show").
    void report(std::string_view text) { write("= ", text); }

    [[nodiscard]] bool tracing() const { return trace_; }
    // Redirects everything (for runs whose output nobody reads).
    void setStream(std::ostream& stream) { stream_ = &stream; }
    void flush() { stream_->flush(); }

private:
    void write(std::string_view prefix, std::string_view text) {
        *stream_ << prefix << text << '\n';
    }

    std::ostream* stream_;
    bool trace_;
};

} // namespace hg::sim
