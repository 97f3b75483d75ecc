#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace hg {

// A private copy of the fixture scripts with the permissions the tests rely
// on (every script executable except not-executable.sh), whatever the
// checkout did to the file modes. Removed again at the end of the test.
class FixtureDir {
public:
    FixtureDir() {
        namespace fs = std::filesystem;
        std::string pattern = (fs::temp_directory_path() / "hg-apps-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
        dir_ = pattern;
        for (const auto& entry : fs::directory_iterator(HG_APPS_FIXTURE_DIR)) {
            const fs::path target = dir_ / entry.path().filename();
            fs::copy_file(entry.path(), target);
            const bool executable = entry.path().filename() != "not-executable.sh";
            fs::permissions(target, executable
                                        ? fs::perms::owner_all | fs::perms::group_read |
                                              fs::perms::group_exec | fs::perms::others_read |
                                              fs::perms::others_exec
                                        : fs::perms::owner_read | fs::perms::owner_write |
                                              fs::perms::group_read | fs::perms::others_read);
        }
    }
    FixtureDir(const FixtureDir&) = delete;
    FixtureDir& operator=(const FixtureDir&) = delete;
    ~FixtureDir() {
        std::error_code ignored;
        std::filesystem::remove_all(dir_, ignored);
    }

    [[nodiscard]] std::string path(const std::string& script) const {
        return (dir_ / script).string();
    }
    [[nodiscard]] const std::filesystem::path& dir() const { return dir_; }

private:
    std::filesystem::path dir_;
};

} // namespace hg
