#pragma once

#include "ports/LineSink.hpp"
#include "ports/Updater.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace hg {

// Updates through the Sparkle 2 framework in the application bundle
// (Contents/Frameworks/Sparkle.framework), loaded when the updater starts: the
// program neither links against Sparkle nor needs its headers to build. Its
// standard controller does the scheduled checks and shows the user-initiated
// ones; the feed address and signing key are in the bundle's Info.plist.
//
// Without the framework, or without a feed address and its signing key in
// Info.plist (SUFeedURL, SUPublicEDKey), updates are off: start() says why,
// once, offReason() gives the same sentence, and checks do nothing. Main
// thread only.
class SparkleUpdater final : public Updater {
public:
    static constexpr const char* offLine =
        "Updates are off: the Sparkle framework is not in the application bundle";
    static constexpr const char* noFeedLine =
        "Updates are off: the application bundle sets no update feed or no signing key";
    static constexpr const char* loadFailedLine =
        "Updates are off: the Sparkle framework in the application bundle does not load";

    // `delegate` is the Objective-C object that answers the framework as its
    // updater and user-driver delegate (it calls validUpdateFound()); the
    // framework holds it weakly, so it must outlive this object. `out` too.
    SparkleUpdater(void* delegate, LineSink& out);
    ~SparkleUpdater() override;
    SparkleUpdater(const SparkleUpdater&) = delete;
    SparkleUpdater& operator=(const SparkleUpdater&) = delete;

    void start(std::function<void()> validUpdateFound) override;
    void checkForUpdates() override;
    [[nodiscard]] std::optional<std::string> offReason() const override;

    // The framework found a valid update: passes it on to start()'s callback.
    void validUpdateFound();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
