#pragma once

#include "ports/FileSystem.hpp"

namespace hg {

// The file system as stat() sees it.
class PosixFileSystem final : public FileSystem {
public:
    [[nodiscard]] bool fileExists(const std::string& path) const override;
};

} // namespace hg
