#include "backends/linux/AppIdentities.hpp"

#include <cstdlib>

namespace hg {

namespace {

// TASK_COMM_LEN less the terminating zero.
constexpr std::size_t commLength = 15;

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

} // namespace

std::vector<AppIdentity> knownAppIdentities() {
    return {
        {"us.zoom.xos", {"zoom", "ZoomLauncher"}, {"us.zoom.Zoom"}},
        {"app.tuple.app", {"tuple", "Tuple"}, {"app.tuple.Tuple"}},
    };
}

std::vector<AppIdentity> parseAppIdentities(std::string_view text) {
    std::vector<AppIdentity> identities;
    while (!text.empty()) {
        const auto comma = text.find(',');
        const std::string_view entry = trimmed(text.substr(0, comma));
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
        const auto equals = entry.find('=');
        if (equals == std::string_view::npos) {
            continue;
        }
        const std::string_view bundle = trimmed(entry.substr(0, equals));
        const std::string_view process = trimmed(entry.substr(equals + 1));
        if (bundle.empty() || process.empty()) {
            continue;
        }
        identities.push_back(AppIdentity{std::string(bundle), {std::string(process)}, {}});
    }
    return identities;
}

std::vector<AppIdentity> environmentAppIdentities() {
    const char* text = std::getenv("HUSHGREMLIN_APP_IDENTITIES");
    return text == nullptr ? std::vector<AppIdentity>{} : parseAppIdentities(text);
}

std::vector<AppIdentity> defaultAppIdentities() {
#ifdef HG_TEST_APP_IDENTITIES
    if (const char* only = std::getenv("HUSHGREMLIN_TEST_APP_IDENTITIES"); only != nullptr) {
        return parseAppIdentities(only);
    }
#endif
    std::vector<AppIdentity> identities = knownAppIdentities();
    for (auto& extra : environmentAppIdentities()) {
        identities.push_back(std::move(extra));
    }
    return identities;
}

std::string_view kernelProcessName(std::string_view name) {
    return name.substr(0, commLength);
}

} // namespace hg
