#pragma once

#include "ports/LineSink.hpp"

namespace hg {

// Diagnostic lines on standard output, one whole line per write, flushed.
class StdoutLineSink final : public LineSink {
public:
    void line(std::string_view text) override;
};

} // namespace hg
