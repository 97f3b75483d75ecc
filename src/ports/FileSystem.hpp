#pragma once

#include <string>

namespace hg {

class FileSystem {
public:
    virtual ~FileSystem() = default;

    // Whether something exists at `path` (following links). Unreadable parent
    // folders read as "does not exist".
    [[nodiscard]] virtual bool fileExists(const std::string& path) const = 0;
};

} // namespace hg
