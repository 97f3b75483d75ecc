#pragma once

#include "ports/FileSystem.hpp"

#include <set>

namespace hg {

// A set of paths that exist; nothing else does.
class FakeFileSystem final : public FileSystem {
public:
    [[nodiscard]] bool fileExists(const std::string& path) const override {
        return paths_.contains(path);
    }

    void add(std::string path) { paths_.insert(std::move(path)); }
    void remove(const std::string& path) { paths_.erase(path); }
    [[nodiscard]] const std::set<std::string>& paths() const { return paths_; }

private:
    std::set<std::string> paths_;
};

} // namespace hg
