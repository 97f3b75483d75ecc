#include "platform/posix/PosixProcessRunner.hpp"

#include "FixtureDir.hpp"
#include "platform/posix/PosixFileSystem.hpp"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg {
namespace {

TEST(PosixProcessRunner, ChildInheritsEnvironmentAndWorkingDirectory) {
    FixtureDir fixtures;
    PosixProcessRunner runner;
    ::setenv("HG_FIXTURE_PROBE", "probe value", 1);
    const auto result = runner.run(fixtures.path("echo-env.sh"), {});
    ::unsetenv("HG_FIXTURE_PROBE");
    const auto cwd = std::filesystem::current_path().string();
    EXPECT_FALSE(result.launchError.has_value());
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardOutput, "probe value|" + cwd);
}

TEST(PosixProcessRunner, StreamsAreKeptAsRawBytes) {
    FixtureDir fixtures;
    PosixProcessRunner runner;
    const auto result = runner.run(fixtures.path("invalid-utf8.sh"), {"4"});
    EXPECT_EQ(result.exitStatus, 4);
    EXPECT_EQ(result.standardOutput, "{\"in_call\":false}\xFF");
    EXPECT_EQ(result.standardError, "bad \xFF");
}

TEST(PosixProcessRunner, ArgumentsArePassedAsGiven) {
    FixtureDir fixtures;
    PosixProcessRunner runner;
    const auto result = runner.run(fixtures.path("echo-args.sh"), {"a b", "", "'c'", "$HOME"});
    EXPECT_EQ(result.standardError, "a b  'c' $HOME");
}

TEST(PosixFileSystem, FileExistsFollowsStat) {
    FixtureDir fixtures;
    PosixFileSystem files;
    EXPECT_TRUE(files.fileExists(fixtures.path("empty.sh")));
    EXPECT_TRUE(files.fileExists(fixtures.path("not-executable.sh")));
    EXPECT_FALSE(files.fileExists(fixtures.path("absent")));
    EXPECT_FALSE(files.fileExists(""));
}

} // namespace
} // namespace hg
