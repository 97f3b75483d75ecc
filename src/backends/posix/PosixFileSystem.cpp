#include "backends/posix/PosixFileSystem.hpp"

#include <sys/stat.h>

namespace hg {

bool PosixFileSystem::fileExists(const std::string& path) const {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

} // namespace hg
