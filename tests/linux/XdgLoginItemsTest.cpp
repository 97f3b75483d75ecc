#include "backends/linux/XdgLoginItems.hpp"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace hg {
namespace {

using Status = LoginItems::Status;

std::string readFile(const std::string& path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), {}};
}

class XdgLoginItemsTest : public ::testing::Test {
protected:
    QTemporaryDir home_;
    std::string configHome_ = home_.path().toStdString() + "/config";
    XdgLoginItems items_{"/opt/HushGremlin/bin/hushgremlin", configHome_};
};

TEST_F(XdgLoginItemsTest, RegisterWritesTheEntryAndUnregisterRemovesIt) {
    EXPECT_EQ(items_.status(), Status::notRegistered);
    EXPECT_EQ(items_.entryPath(), configHome_ + "/autostart/hushgremlin.desktop");

    EXPECT_EQ(items_.registerItem(), std::nullopt) << "the folders are made as needed";
    EXPECT_EQ(items_.status(), Status::enabled);
    const std::string entry = readFile(items_.entryPath());
    EXPECT_EQ(entry.rfind("[Desktop Entry]\n", 0), 0u);
    EXPECT_NE(entry.find("\nType=Application\n"), std::string::npos);
    EXPECT_NE(entry.find("\nExec=/opt/HushGremlin/bin/hushgremlin\n"), std::string::npos);
    EXPECT_NE(entry.find("\nTryExec=/opt/HushGremlin/bin/hushgremlin\n"), std::string::npos)
        << "a session skips the entry once the program is uninstalled";

    EXPECT_EQ(items_.unregisterItem(), std::nullopt);
    EXPECT_EQ(items_.status(), Status::notRegistered);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(items_.entryPath())));
    EXPECT_EQ(items_.unregisterItem(), std::nullopt) << "nothing to remove is no failure";
}

TEST_F(XdgLoginItemsTest, RegisterReplacesAnEntryTheDesktopSwitchedOff) {
    ASSERT_EQ(items_.registerItem(), std::nullopt);
    const struct {
        const char* what;
        const char* entry;
        Status status;
    } rows[] = {
        {"hidden", "[Desktop Entry]\nType=Application\nExec=x\nHidden=true\n",
         Status::notRegistered},
        {"GNOME switch off", "[Desktop Entry]\nExec=x\nX-GNOME-Autostart-enabled = false\n",
         Status::notRegistered},
        {"GNOME switch on", "[Desktop Entry]\nExec=x\nX-GNOME-Autostart-enabled=true\n",
         Status::enabled},
        {"Hidden in another group", "[Desktop Entry]\nExec=x\n[Desktop Action a]\nHidden=true\n",
         Status::enabled},
        {"Hidden=false", "[Desktop Entry]\nHidden=false\n", Status::enabled},
    };
    for (const auto& row : rows) {
        std::ofstream(items_.entryPath()) << row.entry;
        EXPECT_EQ(items_.status(), row.status) << row.what;
        EXPECT_EQ(items_.registerItem(), std::nullopt) << row.what;
        EXPECT_EQ(items_.status(), Status::enabled) << row.what;
    }
    EXPECT_EQ(QDir(QString::fromStdString(configHome_ + "/autostart")).entryList(QDir::Files),
              QStringList{"hushgremlin.desktop"})
        << "replaced in place, no leftovers";
}

TEST_F(XdgLoginItemsTest, FailuresReturnTheSystemsErrorText) {
    // A file where the configuration folder should be: no folder can be made
    // there, whoever runs the test.
    std::ofstream(configHome_) << "not a folder";
    EXPECT_EQ(items_.registerItem(), "Not a directory");
    EXPECT_EQ(items_.status(), Status::notRegistered);

    XdgLoginItems blocked("/bin/true", home_.path().toStdString() + "/other");
    QDir().mkpath(QString::fromStdString(blocked.entryPath() + "/inside"));
    EXPECT_EQ(blocked.status(), Status::notFound) << "a folder cannot be read as an entry";
    EXPECT_EQ(blocked.unregisterItem(), "Is a directory");
    EXPECT_TRUE(blocked.registerItem().has_value());
}

TEST(XdgLoginItems, FollowsXdgConfigHomeThenHome) {
    // The other cases here name their folder: none needs the variable back.
    const XdgLoginItems items("/bin/true");
    setenv("XDG_CONFIG_HOME", "/tmp/xdg-test-config", 1);
    EXPECT_EQ(items.entryPath(), "/tmp/xdg-test-config/autostart/hushgremlin.desktop");
    setenv("XDG_CONFIG_HOME", "relative/is/ignored", 1);
    EXPECT_EQ(items.entryPath(),
              std::string(std::getenv("HOME")) + "/.config/autostart/hushgremlin.desktop");
}

TEST(XdgLoginItems, QuotesTheProgramPathForExec) {
    const struct {
        const char* path;
        const char* exec;
    } rows[] = {
        {"/usr/bin/hushgremlin", "/usr/bin/hushgremlin"},
        {"/home/me/My Apps/hushgremlin", "\"/home/me/My Apps/hushgremlin\""},
        {"/opt/a$b/hg", "\"/opt/a\\\\$b/hg\""},
        {"/opt/a\\b/hg", "\"/opt/a\\\\\\\\b/hg\""},
        {"/opt/100%/hg", "/opt/100%%/hg"},
        {"/opt/a\nHidden=true\t/hg", "\"/opt/a\\nHidden=true\\t/hg\""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(XdgLoginItems::execArgument(row.path), row.exec) << row.path;
    }
}

} // namespace
} // namespace hg
