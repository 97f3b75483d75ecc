#pragma once

#include "backends/linux/XdgLoginItems.hpp"
#include "ports/LineSink.hpp"

namespace hg {

// Start at login runs the program where the package installs it, never a
// build tree's copy, which the entry would outlive. A copy run from elsewhere
// writes the same entry (inert until the package is installed: TryExec) and
// says so on standard output.
class InstalledProgramLoginItems final : public LoginItems {
public:
    explicit InstalledProgramLoginItems(LineSink& out);

    [[nodiscard]] Status status() const override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    LineSink& out_;
    XdgLoginItems entry_;
};

} // namespace hg
