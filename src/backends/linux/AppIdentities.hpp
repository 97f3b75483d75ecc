#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hg {

// How one application shows up among the processes of a Linux desktop, under
// the bundle identifier the rest of the program knows it by.
struct AppIdentity {
    std::string bundleIdentifier;
    // Process names as the kernel keeps them (/proc/PID/comm): the executable's
    // file name, cut to its first 15 bytes.
    std::vector<std::string> processNames;
    // Flatpak application ids; such processes run in a cgroup scope named
    // "app-flatpak-<id>-<number>.scope".
    std::vector<std::string> flatpakIds;
};

// The applications the program knows. Zoom's Linux client is started through
// /opt/zoom/ZoomLauncher, which runs /opt/zoom/zoom, the process that shows
// the windows and menus (the Flatpak "us.zoom.Zoom" and the snap run the same
// binaries). Tuple's Linux client is young and undocumented: "tuple" is its
// expected executable and "app.tuple.Tuple" a guessed Flatpak id; both are
// unverified.
[[nodiscard]] std::vector<AppIdentity> knownAppIdentities();

// Extra identities from HUSHGREMLIN_APP_IDENTITIES, for tests and for
// clients installed under other names: "bundle=process[,bundle=process...]",
// for example "us.zoom.xos=hg-fixture-app". Malformed entries are skipped.
[[nodiscard]] std::vector<AppIdentity> parseAppIdentities(std::string_view text);
[[nodiscard]] std::vector<AppIdentity> environmentAppIdentities();

// The known identities followed by those from the environment. In builds
// with the tests (HG_BUILD_TESTS), HUSHGREMLIN_TEST_APP_IDENTITIES, when set,
// replaces them all: a test names the only apps the program may see, so that
// a Zoom or Tuple of the user's own cannot change its result. The shipped
// program is built without the tests and ignores it.
[[nodiscard]] std::vector<AppIdentity> defaultAppIdentities();

// A process name as /proc/PID/comm shows it: at most 15 bytes.
[[nodiscard]] std::string_view kernelProcessName(std::string_view name);

} // namespace hg
