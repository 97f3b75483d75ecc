#include "shells/qt/AppcastUpdater.hpp"

#include "shells/qt/AppcastFeed.hpp"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace hg {

namespace {

using namespace std::chrono_literals;

constexpr auto requestTimeout = 30s;
// Appcasts are a few kilobytes; anything far larger is not one.
constexpr qint64 largestFeed = 4 * 1024 * 1024;

} // namespace

AppcastUpdater::AppcastUpdater(Options options, UpdateAnswers& answers, LineSink& out)
    : options_(std::move(options)), answers_(answers), out_(out) {
    timer_.setInterval(options_.interval);
    QObject::connect(&timer_, &QTimer::timeout, [this] { check(Kind::scheduled); });
}

AppcastUpdater::~AppcastUpdater() = default;

bool AppcastUpdater::sayOffOnce() {
    if (!options_.feedUrl.empty()) {
        return false;
    }
    if (!saidOff_) {
        saidOff_ = true;
        out_.line(offLine);
    }
    return true;
}

void AppcastUpdater::start(std::function<void()> validUpdateFound) {
    validUpdateFound_ = std::move(validUpdateFound);
    if (sayOffOnce()) {
        return;
    }
    timer_.start();
    // The first scheduled check, once the event loop runs.
    QTimer::singleShot(0, &timer_, [this] { check(Kind::scheduled); });
}

void AppcastUpdater::checkForUpdates() {
    if (sayOffOnce()) {
        answers_.checkFailed(offLine);
        return;
    }
    check(Kind::userInitiated);
}

std::optional<std::string> AppcastUpdater::offReason() const {
    if (options_.feedUrl.empty()) {
        return offLine;
    }
    return std::nullopt;
}

void AppcastUpdater::check(Kind kind) {
    if (!network_) {
        network_ = std::make_unique<QNetworkAccessManager>();
    }
    QNetworkRequest request(QUrl(QString::fromStdString(options_.feedUrl)));
    request.setTransferTimeout(static_cast<int>(requestTimeout.count() * 1000));
    request.setHeader(
        QNetworkRequest::UserAgentHeader,
        QStringLiteral("HushGremlin/%1").arg(QString::fromStdString(options_.currentVersion)));
    QNetworkReply* reply = network_->get(request);
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                     [reply](qint64 received, qint64) {
                         if (received > largestFeed) {
                             reply->setProperty("tooLarge", true);
                             reply->abort();
                         }
                     });
    QObject::connect(reply, &QNetworkReply::finished, network_.get(),
                     [this, reply, kind] { finished(reply, kind); });
}

void AppcastUpdater::finished(QNetworkReply* reply, Kind kind) {
    reply->deleteLater();
    if (reply->property("tooLarge").toBool()) {
        failed("The update feed is too large to be an appcast", kind);
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        failed("The update feed could not be fetched: " + reply->errorString().toStdString(), kind);
        return;
    }
    const auto parsed = AppcastFeed::parse(reply->readAll());
    if (const auto* reason = std::get_if<std::string>(&parsed)) {
        failed(*reason, kind);
        return;
    }
    const auto& items = std::get<std::vector<AppcastItem>>(parsed);
    const AppcastItem* newest = AppcastFeed::newest(items);
    if (newest == nullptr ||
        AppcastFeed::compareVersions(newest->version, options_.currentVersion) <= 0) {
        if (kind == Kind::userInitiated) {
            answers_.upToDate(options_.currentVersion);
        }
        return;
    }
    if (validUpdateFound_) {
        validUpdateFound_();
    }
    if (kind == Kind::userInitiated) {
        answers_.updateAvailable(*newest, options_.currentVersion);
    }
}

void AppcastUpdater::failed(const std::string& reason, Kind kind) {
    if (kind == Kind::userInitiated) {
        answers_.checkFailed(reason);
    } else {
        out_.line("Update check failed: " + reason);
    }
}

} // namespace hg
