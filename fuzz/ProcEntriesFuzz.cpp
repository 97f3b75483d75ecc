// Feeds arbitrary bytes as the /proc entries of one process (its name, its
// stat line and its cgroups) and as the extra identities the environment may
// name, and lists the running applications from them. Any crash, sanitizer
// report or hang is a finding.
#include "backends/linux/ProcRunningApplications.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace {

// The next field of `text`, up to a 0x01 byte.
std::string_view field(std::string_view& text) {
    const auto end = text.find('\x01');
    const std::string_view part = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return part;
}

void write(const std::filesystem::path& path, std::string_view contents) {
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

const std::filesystem::path& procRoot() {
    static const std::filesystem::path root = [] {
        auto path =
            std::filesystem::temp_directory_path() / ("hg-proc-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path / "4242");
        return path;
    }();
    // Gone when the run ends (a fault's exit leaves it for a look); registered
    // once the folder's name exists, so it runs before that name is destroyed.
    [[maybe_unused]] static const int removed = std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(procRoot(), ignored);
    });
    return root;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto process = procRoot() / "4242";
    write(process / "comm", field(text));
    write(process / "stat", field(text));
    write(process / "cgroup", field(text));
    auto identities = hg::knownAppIdentities();
    for (auto& extra : hg::parseAppIdentities(field(text))) {
        identities.push_back(std::move(extra));
    }
    const hg::ProcRunningApplications applications(hg::ProcRunningApplications::Options{
        .identities = identities, .procRoot = procRoot().string(), .registeredProcesses = [] {
            return std::vector<hg::ProcessId>{4242};
        }});
    for (const auto& app : applications.runningApplications()) {
        if (app.pid != 4242 || !app.bundleIdentifier || app.bundleIdentifier->empty()) {
            std::abort();
        }
    }
    return 0;
}
