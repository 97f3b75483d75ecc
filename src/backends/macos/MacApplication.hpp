#pragma once

#include "ports/Application.hpp"

namespace hg {

// The shared NSApplication. Main thread only; the application object must
// exist (the program's entry point creates it before anything else).
class MacApplication final : public Application {
public:
    void activate() override;
    void terminate() override;
    // The main bundle's CFBundleVersion when it is a string, else "?".
    [[nodiscard]] std::optional<std::string> packageVersion() const override;
};

} // namespace hg
