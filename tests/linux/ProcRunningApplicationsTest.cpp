// Running applications from a /proc tree made by the test.

#include "backends/linux/ProcRunningApplications.hpp"

#include "backends/linux/AppIdentities.hpp"

#include <QTemporaryDir>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

MATCHER_P2(App, bundle, pid, "") {
    return arg.bundleIdentifier == std::optional<std::string>(bundle) && arg.pid == pid;
}

class ProcTree : public ::testing::Test {
protected:
    std::string add(int pid, const std::string& comm, char state = 'S',
                    const std::string& cgroup = "0::/user.slice\n") {
        const auto dir = root_ / std::to_string(pid);
        std::filesystem::create_directories(dir);
        std::ofstream(dir / "comm") << comm << "\n";
        std::ofstream(dir / "stat") << pid << " (" << comm << ") " << state << " 1 1 1 0 -1\n";
        std::ofstream(dir / "cgroup") << cgroup;
        return dir.string();
    }

    std::vector<RunningApplication> list(ProcRunningApplications::Options options = {}) {
        options.procRoot = root_.string();
        if (options.identities.empty()) {
            options.identities = knownAppIdentities();
        }
        return ProcRunningApplications(std::move(options)).runningApplications();
    }

    QTemporaryDir dir_;
    std::filesystem::path root_ = dir_.path().toStdString();
};

TEST_F(ProcTree, ListsTheKnownApplicationsOfThisUserByProcessId) {
    add(300, "zoom");
    add(120, "ZoomLauncher");
    add(200, "tuple");
    add(250, "bash");
    add(260, "Zoom"); // letter case counts
    std::filesystem::create_directories(root_ / "self");
    std::filesystem::create_directories(root_ / "12ab");

    EXPECT_THAT(list(), ElementsAre(App("us.zoom.xos", 120), App("app.tuple.app", 200),
                                    App("us.zoom.xos", 300)));
    EXPECT_THAT(ProcRunningApplications({.procRoot = "/nonexistent/proc"}).runningApplications(),
                IsEmpty());
}

TEST_F(ProcTree, SkipsProcessesThatAreGoneOrNotOurs) {
    add(100, "zoom", 'Z');
    add(101, "zoom", 'X');
    const auto other = add(102, "zoom");
    add(103, "zoom", 'T');                              // stopped is still running
    std::filesystem::create_directories(root_ / "104"); // vanished while listing: no comm
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(other.c_str(), 4321, 4321), 0);
        EXPECT_THAT(list(), ElementsAre(App("us.zoom.xos", 103)));
    }
    EXPECT_THAT(list({.uid = ::geteuid() + 1}), IsEmpty());
}

TEST_F(ProcTree, MatchesOddNamesLongNamesAndFlatpakScopes) {
    add(10, "we(ird) ) app");
    add(11, "hg-fixture-appl"); // the kernel keeps 15 bytes of the name
    add(12, "bwrap", 'S', "0::/user.slice/app-flatpak-us.zoom.Zoom-4242.scope\n");
    add(13, "bwrap", 'S', "0::/user.slice/app-flatpak-us.zoom.Zoomer-4243.scope\n");

    auto identities = knownAppIdentities();
    identities.push_back({"odd.app", {"we(ird) ) app"}, {}});
    identities.push_back({"us.zoom.xos", {"hg-fixture-application"}, {}});
    EXPECT_THAT(list({.identities = identities}),
                ElementsAre(App("odd.app", 10), App("us.zoom.xos", 11), App("us.zoom.xos", 12)));
}

TEST_F(ProcTree, ARecycledProcessIdIsLookedAtAfresh) {
    ProcRunningApplications apps(
        {.identities = knownAppIdentities(), .procRoot = root_.string(), .rescanAfter = {}});
    add(20, "bwrap", 'S', "0::/app-flatpak-us.zoom.Zoom-1.scope\n");
    EXPECT_THAT(apps.runningApplications(), ElementsAre(App("us.zoom.xos", 20)));

    std::filesystem::remove_all(root_ / "20");
    EXPECT_THAT(apps.runningApplications(), IsEmpty());
    add(20, "bwrap", 'S', "0::/user.slice/app-gnome-other-2.scope\n");
    EXPECT_THAT(apps.runningApplications(), IsEmpty());
    // Between two listings, as a process that ends and one that starts with
    // its pid: a new /proc entry.
    add(21, "cat", 'S', "0::/app-flatpak-app.tuple.Tuple-3.scope\n");
    std::filesystem::remove_all(root_ / "20");
    std::filesystem::rename(root_ / "21", root_ / "20");
    EXPECT_THAT(apps.runningApplications(), ElementsAre(App("app.tuple.app", 20)));
}

TEST_F(ProcTree, BetweenFullListingsEndedProcessesDropOutAndNewOnesWait) {
    ProcRunningApplications apps({.identities = knownAppIdentities(),
                                  .procRoot = root_.string(),
                                  .rescanAfter = std::chrono::hours(1)});
    add(30, "zoom");
    add(40, "tuple");
    EXPECT_THAT(apps.runningApplications(),
                ElementsAre(App("us.zoom.xos", 30), App("app.tuple.app", 40)));
    add(31, "zoom");
    std::filesystem::remove_all(root_ / "30");
    add(40, "tuple", 'Z'); // exited, not reaped yet
    EXPECT_THAT(apps.runningApplications(), IsEmpty());
}

TEST_F(ProcTree, PutsProcessesWithAnAccessibleApplicationFirstOnlyWhenABundleHasSeveral) {
    add(50, "ZoomLauncher");
    add(60, "tuple");
    add(70, "zoom");
    int asked = 0;
    const auto registered = [&asked] {
        ++asked;
        return std::vector<ProcessId>{70, 999};
    };
    EXPECT_THAT(
        list({.registeredProcesses = registered}),
        ElementsAre(App("us.zoom.xos", 70), App("us.zoom.xos", 50), App("app.tuple.app", 60)));
    EXPECT_EQ(asked, 1);

    std::filesystem::remove_all(root_ / "50");
    EXPECT_THAT(list({.registeredProcesses = registered}),
                ElementsAre(App("app.tuple.app", 60), App("us.zoom.xos", 70)));
    EXPECT_EQ(asked, 1) << "the bus was asked although no bundle had two processes";
}

TEST(AppIdentities, ReadsTheEnvironmentsIdentitiesAndSkipsMalformedOnes) {
    const auto parsed =
        parseAppIdentities(" us.zoom.xos = hg-fixture-app ,bad,=x,a=,app.tuple.app=tpl");
    ASSERT_EQ(parsed.size(), 2U);
    EXPECT_EQ(parsed[0].bundleIdentifier, "us.zoom.xos");
    EXPECT_THAT(parsed[0].processNames, ElementsAre("hg-fixture-app"));
    EXPECT_EQ(parsed[1].bundleIdentifier, "app.tuple.app");
    EXPECT_THAT(parsed[1].processNames, ElementsAre("tpl"));
    EXPECT_THAT(parseAppIdentities(""), IsEmpty());

    // A test build's harness names the only apps; the built-in names go.
    ::setenv("HUSHGREMLIN_TEST_APP_IDENTITIES", "us.zoom.xos=hg-fixture-app", 1);
    const auto only = defaultAppIdentities();
    ::unsetenv("HUSHGREMLIN_TEST_APP_IDENTITIES");
    ASSERT_EQ(only.size(), 1U);
    EXPECT_THAT(only[0].processNames, ElementsAre("hg-fixture-app"));
    EXPECT_GE(defaultAppIdentities().size(), knownAppIdentities().size());
}

} // namespace
} // namespace hg
