#pragma once

#include "ports/RunningApplications.hpp"
#include "backends/linux/AppIdentities.hpp"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace hg {

// The running applications of this user, read from /proc: every live process
// owned by the user whose name or Flatpak id is one of an AppIdentity's, with
// that identity's bundle identifier. Other processes are not listed.
//
// Order: by process id, except that when one bundle identifier has several
// processes (Zoom's launcher and Zoom itself), those that have registered
// with the accessibility bus come first, so that the first process found for
// a bundle is the one whose menus can be read.
class ProcRunningApplications final : public RunningApplications {
public:
    struct Options {
        std::vector<AppIdentity> identities = defaultAppIdentities();
        std::string procRoot = "/proc";
        // Whose processes are listed; defaults to this process's user.
        std::optional<unsigned> uid{};
        // The processes registered with the accessibility bus, asked only
        // when a bundle has more than one process. None: keep process order.
        std::function<std::vector<ProcessId>()> registeredProcesses{};
    };

    ProcRunningApplications();
    explicit ProcRunningApplications(Options options);

    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;

private:
    struct FlatpakVerdict {
        std::string processName;
        bool checked = false;
        const AppIdentity* identity = nullptr;
    };

    [[nodiscard]] const AppIdentity* identify(ProcessId pid, const std::string& processDir) const;

    Options options_;
    unsigned uid_;
    // Flatpak scopes of the processes seen in the last listing.
    mutable std::map<ProcessId, FlatpakVerdict> flatpakVerdicts_;
};

} // namespace hg
