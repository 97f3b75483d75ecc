#pragma once

#include "ports/LineSink.hpp"
#include "ports/Updater.hpp"
#include "shells/qt/UpdateAnswers.hpp"

#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

class QNetworkAccessManager;
class QNetworkReply;

namespace hg {

// Update checks against an appcast (Sparkle's feed format) for builds without
// the Sparkle framework: the Linux desktop and macOS builds without it.
//
// It only tells: a scheduled check (right after start, then once per
// interval) reports a newer release through the valid-update callback; a
// user-initiated check also answers the user (up to date, the newer release
// with its links, or why the check failed). Nothing is downloaded or
// installed. Without a feed address the updater is off and says so once.
// Main thread only; the network requests run in Qt's event loop.
class AppcastUpdater final : public Updater {
public:
    struct Options {
        std::string feedUrl;        // empty: updates are off
        std::string currentVersion; // the running program's version
        std::chrono::milliseconds interval = std::chrono::hours(24);
    };

    AppcastUpdater(Options options, UpdateAnswers& answers, LineSink& out);
    ~AppcastUpdater() override;
    AppcastUpdater(const AppcastUpdater&) = delete;
    AppcastUpdater& operator=(const AppcastUpdater&) = delete;

    void start(std::function<void()> validUpdateFound) override;
    void checkForUpdates() override;
    // Off without a feed address.
    [[nodiscard]] std::optional<std::string> offReason() const override;

    static constexpr const char* offLine = "Updates are off: no update feed is set";

private:
    enum class Kind : std::uint8_t { scheduled, userInitiated };

    void check(Kind kind);
    void finished(QNetworkReply* reply, Kind kind);
    void failed(const std::string& reason, Kind kind);
    bool sayOffOnce();

    Options options_;
    UpdateAnswers& answers_;
    LineSink& out_;
    std::function<void()> validUpdateFound_;
    std::unique_ptr<QNetworkAccessManager> network_;
    QTimer timer_;
    bool saidOff_ = false;
};

} // namespace hg
