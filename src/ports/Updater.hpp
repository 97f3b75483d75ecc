#pragma once

#include <functional>
#include <optional>
#include <string>

namespace hg {

// The update framework: scheduled checks of its own, plus user-initiated ones.
class Updater {
public:
    virtual ~Updater() = default;

    // Starts the framework's scheduled checking. `validUpdateFound` is called on
    // the main thread each time a check finds a newer version.
    virtual void start(std::function<void()> validUpdateFound) = 0;

    // A user-initiated check, with the framework's own answer shown to the user.
    virtual void checkForUpdates() = 0;

    // Why updates are off (no feed set, no framework in the bundle), as the
    // sentence the user is shown; nothing while they work.
    [[nodiscard]] virtual std::optional<std::string> offReason() const { return std::nullopt; }
};

} // namespace hg
