#pragma once

#include "ports/Accessibility.hpp"

#include <exception>

namespace hg {

// An accessibility call failed. Raised only inside the accessibility layer and
// the Zoom adapter, which catches it; it never crosses MeetingApp. Its text is
// the same whatever the code, so log lines built from it never show the code.
class SwiftAXError : public std::exception {
public:
    explicit SwiftAXError(AXError code, bool timedOutRead = false) noexcept
        : axErr(code), timedOut(timedOutRead) {}

    [[nodiscard]] const char* what() const noexcept override { return "HushGremlin.SwiftAXError"; }

    AXError axErr; // the code of the call that failed
    bool timedOut; // a read that the application did not answer in time
};

} // namespace hg
