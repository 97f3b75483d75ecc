#include "shells/qt/AppcastUpdater.hpp"

#include "DesktopSession.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "shells/qt/AppcastFeed.hpp"

#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>
#include <memory>

namespace hg {
namespace {

using namespace std::chrono_literals;

using test::waitUntil;

// Serves one canned HTTP answer to every request, on loopback.
class FeedServer {
public:
    FeedServer() {
        server_.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&server_, &QTcpServer::newConnection, [this] {
            while (QTcpSocket* socket = server_.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    request_ += socket->readAll();
                    if (!request_.contains("\r\n\r\n")) {
                        return;
                    }
                    request_.clear();
                    ++requests;
                    socket->write("HTTP/1.1 " + status + "\r\nContent-Type: application/rss+xml" +
                                  "\r\nContent-Length: " + QByteArray::number(body.size()) +
                                  "\r\nConnection: close\r\n\r\n" + body);
                    socket->disconnectFromHost();
                });
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    [[nodiscard]] std::string url() const {
        return "http://127.0.0.1:" + std::to_string(server_.serverPort()) + "/appcast.xml";
    }

    QByteArray status = "200 OK";
    QByteArray body;
    int requests = 0;

private:
    QTcpServer server_;
    QByteArray request_;
};

struct RecordedAnswers final : UpdateAnswers {
    void upToDate(const std::string& currentVersion) override {
        answers.push_back("up to date: " + currentVersion);
    }
    void updateAvailable(const AppcastItem& release, const std::string& currentVersion) override {
        answers.push_back("available: " + release.shortVersion + " over " + currentVersion +
                          " from " + release.downloadLink);
    }
    void checkFailed(const std::string& reason) override { answers.push_back("failed: " + reason); }

    std::vector<std::string> answers;
};

QByteArray appcast(const QByteArray& items) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel><title>HushGremlin</title>)" +
           items + "</channel></rss>";
}

QByteArray item(const QByteArray& version, const QByteArray& shortVersion) {
    return "<item><title>Version " + shortVersion + "</title><sparkle:version>" + version +
           "</sparkle:version><sparkle:shortVersionString>" + shortVersion +
           "</sparkle:shortVersionString><sparkle:releaseNotesLink>https://example.org/notes/" +
           shortVersion + ".html</sparkle:releaseNotesLink><enclosure url=\"https://example.org/" +
           shortVersion + ".tgz\"/></item>";
}

TEST(AppcastFeed, ComparesVersionsNumericallyByComponent) {
    const struct {
        const char* a;
        const char* b;
        int sign;
    } rows[] = {
        {"0.1.0", "0.1.0", 0}, {"0.1", "0.1.0", 0},
        {"0.2.0", "0.1.9", 1}, {"1.10", "1.9", 1},
        {"1.2", "1.2.1", -1},  {"2", "10", -1},
        {"1.2b", "1.2", 0},    {"", "0", 0},
        {"3.0", "2.99.99", 1}, {"18446744073709551616", "1", 1},
        {"1.007", "1.7", 0},
    };
    for (const auto& row : rows) {
        const int result = AppcastFeed::compareVersions(row.a, row.b);
        EXPECT_EQ((result > 0) - (result < 0), row.sign) << row.a << " vs " << row.b;
    }
}

TEST(AppcastFeed, ReadsItemsOfBothFeedStylesAndRejectsOtherDocuments) {
    const QByteArray xml = appcast(item("12", "1.2.0") +
                                   // The older style: versions on the enclosure.
                                   R"(<item><title>Old</title><link>https://example.org/1.1</link>
                 <enclosure url="https://example.org/1.1.tgz" sparkle:version="11"
                            sparkle:shortVersionString="1.1"/></item>)" +
                                   "<item><title>No version</title></item>");
    const auto parsed = AppcastFeed::parse(xml);
    ASSERT_TRUE(std::holds_alternative<std::vector<AppcastItem>>(parsed));
    const auto& items = std::get<std::vector<AppcastItem>>(parsed);
    EXPECT_EQ(items, (std::vector<AppcastItem>{
                         {"Version 1.2.0", "12", "1.2.0", "https://example.org/notes/1.2.0.html",
                          "https://example.org/1.2.0.tgz"},
                         {"Old", "11", "1.1", "", "https://example.org/1.1.tgz"}}))
        << "an item without a version is no release";
    EXPECT_EQ(AppcastFeed::newest(items), &items[0]);

    for (const QByteArray& text : {QByteArray("<html><body>Not found</body></html>"),
                                   QByteArray(""), QByteArray("{\"version\": 2}")}) {
        const auto rejected = AppcastFeed::parse(text);
        ASSERT_TRUE(std::holds_alternative<std::string>(rejected)) << text.toStdString();
        EXPECT_EQ(std::get<std::string>(rejected).rfind("The update feed is not", 0), 0u)
            << std::get<std::string>(rejected);
    }
}

class AppcastUpdaterTest : public ::testing::Test {
protected:
    std::unique_ptr<AppcastUpdater> makeUpdater(std::string url,
                                                std::chrono::milliseconds interval = 24h) {
        auto updater = std::make_unique<AppcastUpdater>(
            AppcastUpdater::Options{std::move(url), "0.2.0", interval}, answers_, out_);
        updater->start([this] { ++found_; });
        return updater;
    }
    std::string userCheck(AppcastUpdater& updater) {
        const std::size_t before = answers_.answers.size();
        updater.checkForUpdates();
        if (!waitUntil([&] { return answers_.answers.size() > before; })) {
            return "no answer";
        }
        return answers_.answers.back();
    }

    const bool qt_ = test::makeQtApplication(); // before the server's socket
    FeedServer server_;
    RecordedAnswers answers_;
    BufferLineSink out_;
    int found_ = 0;
};

TEST_F(AppcastUpdaterTest, AUserCheckAnswersWithWhatTheFeedSays) {
    server_.body = appcast(item("0.1.0", "0.1.0"));
    auto updater = makeUpdater(server_.url());
    ASSERT_TRUE(waitUntil([&] { return server_.requests == 1; })) << "the first scheduled check";
    EXPECT_EQ(updater->offReason(), std::nullopt);

    EXPECT_EQ(userCheck(*updater), "up to date: 0.2.0") << "older";
    server_.body = appcast(item("0.2", "0.2"));
    EXPECT_EQ(userCheck(*updater), "up to date: 0.2.0") << "the same";
    EXPECT_EQ(found_, 0);

    server_.body =
        appcast(item("0.1.0", "0.1.0") + item("0.10.0", "0.10 beta") + item("0.3.0", "0.3.0"));
    EXPECT_EQ(userCheck(*updater),
              "available: 0.10 beta over 0.2.0 from https://example.org/0.10 beta.tgz");
    EXPECT_EQ(found_, 1) << "a newer release found by the user is reported too";
    EXPECT_TRUE(out_.lines().empty());
}

TEST_F(AppcastUpdaterTest, AUserCheckThatFailsSaysWhy) {
    auto updater = makeUpdater(server_.url());
    server_.body = "<rss><channel><item><title>cut short";
    EXPECT_EQ(userCheck(*updater).rfind("failed: The update feed is not valid XML: ", 0), 0u);

    server_.status = "404 Not Found";
    server_.body = "gone";
    EXPECT_EQ(userCheck(*updater).rfind("failed: The update feed could not be fetched: ", 0), 0u);

    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost, 0);
    const auto port = closed.serverPort();
    closed.close();
    auto down = makeUpdater("http://127.0.0.1:" + std::to_string(port) + "/appcast.xml");
    const std::string answer = userCheck(*down);
    EXPECT_EQ(answer.rfind("failed: The update feed could not be fetched: ", 0), 0u) << answer;
    EXPECT_NE(answer.find("refused"), std::string::npos) << answer;
    EXPECT_EQ(found_, 0);
}

TEST_F(AppcastUpdaterTest, ScheduledChecksReportNewerReleasesQuietly) {
    server_.body = appcast(item("0.3.0", "0.3.0"));
    auto updater = makeUpdater(server_.url(), 20ms);
    ASSERT_TRUE(waitUntil([&] { return found_ >= 3; })) << "checked again at each interval";
    EXPECT_TRUE(answers_.answers.empty()) << "no dialogs for scheduled checks";

    server_.status = "500 Internal Server Error";
    ASSERT_TRUE(waitUntil([&] { return !out_.lines().empty(); }));
    EXPECT_EQ(
        out_.lines().front().rfind("Update check failed: The update feed could not be fetched", 0),
        0u);
    EXPECT_TRUE(answers_.answers.empty());
}

TEST_F(AppcastUpdaterTest, WithoutAFeedUpdatesAreOffAndSaySoOnce) {
    auto updater = makeUpdater("");
    EXPECT_EQ(out_.lines(), std::vector<std::string>{AppcastUpdater::offLine});
    EXPECT_EQ(updater->offReason(), AppcastUpdater::offLine) << "what the disabled button says";
    updater->checkForUpdates();
    updater->checkForUpdates();
    EXPECT_EQ(answers_.answers,
              (std::vector<std::string>{std::string("failed: ") + AppcastUpdater::offLine,
                                        std::string("failed: ") + AppcastUpdater::offLine}));
    EXPECT_EQ(out_.lines().size(), 1u);
    EXPECT_EQ(server_.requests, 0);
}

} // namespace
} // namespace hg
