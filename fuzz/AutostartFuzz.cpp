// Feeds arbitrary bytes as the autostart entry a desktop may have rewritten,
// and as the path of the program the entry starts. Any crash, sanitizer
// report or hang is a finding; so is an entry written for some program path
// that does not read back as on.
#include "backends/linux/XdgLoginItems.hpp"

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

const std::string& configHome() {
    static const std::string home = [] {
        auto path = std::filesystem::temp_directory_path() /
                    ("hg-autostart-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path / "autostart");
        return path.string();
    }();
    // Gone when the run ends (a fault's exit leaves it for a look); registered
    // once the folder's name exists, so it runs before that name is destroyed.
    [[maybe_unused]] static const int removed = std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(configHome(), ignored);
    });
    return home;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto cut = text.find('\0');
    const std::string program(text.substr(0, cut));
    const std::string_view entry = cut == std::string_view::npos ? "" : text.substr(cut + 1);

    hg::XdgLoginItems items(program, configHome());
    std::ofstream(items.entryPath(), std::ios::binary | std::ios::trunc)
        .write(entry.data(), static_cast<std::streamsize>(entry.size()));
    (void)items.status();

    if (!items.registerItem() && items.status() != hg::LoginItems::Status::enabled) {
        std::abort();
    }
    return 0;
}
