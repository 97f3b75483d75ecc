#pragma once

#include <optional>
#include <string>

namespace hg {

// The running application object.
class Application {
public:
    virtual ~Application() = default;

    // Brings the application to the front, ignoring other applications.
    virtual void activate() = 0;

    // Asks the application to terminate: the delegate's will-terminate handling
    // runs, then the event loop ends.
    virtual void terminate() = 0;

    // The version that the application's package declares, for the About
    // window: a macOS bundle's CFBundleVersion, "?" when the bundle has none.
    // Nothing where no package declares one: the build's own version stands.
    [[nodiscard]] virtual std::optional<std::string> packageVersion() const { return std::nullopt; }
};

} // namespace hg
