#pragma once

#include "ports/Accessibility.hpp"

namespace hg {

// The accessibility port over the macOS Accessibility API (AXUIElement).
//
// Copied values are converted by kind: an element, an array made only of
// elements (an empty array included), or a string; every other kind, and a
// success without a value, reads as monostate. AXError codes are passed on
// unchanged. The platform's default messaging time-out applies. An element
// that this backend did not make fails every call with illegalArgument.
class MacAccessibility final : public Accessibility {
public:
    bool isProcessTrusted(bool prompt) override;
    AXElementRef createApplication(ProcessId pid) override;
    AXCopyResult copyAttributeValue(const AXElementRef& element,
                                    std::string_view attribute) override;
    AXError performAction(const AXElementRef& element, std::string_view action) override;
};

} // namespace hg
