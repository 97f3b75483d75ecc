#include "backends/posix/StdoutLineSink.hpp"

#include <cstdio>
#include <string>

namespace hg {

void StdoutLineSink::line(std::string_view text) {
    // One write per line so that lines never interleave with other output.
    std::string whole;
    whole.reserve(text.size() + 1);
    whole.append(text);
    whole.push_back('\n');
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
}

} // namespace hg
