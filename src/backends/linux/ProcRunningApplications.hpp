#pragma once

#include "backends/linux/AppIdentities.hpp"
#include "ports/RunningApplications.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace hg {

// The running applications of this user, read from /proc: every live process
// owned by the user whose name or Flatpak id is one of an AppIdentity's, with
// that identity's bundle identifier. Other processes are not listed.
//
// Cost: the watcher asks once a second for each app it knows, and reading
// every process of the machine is most of what it does while idle. So all of
// /proc is read at most every `rescanAfter`; in between, the last listing is
// given again without the processes that have ended since. A new process thus
// shows up within `rescanAfter`, an ended one drops out at once. In a full
// listing a process's owner and name are read when the process is new to it
// (by its /proc entry's inode number, so a reused pid counts as new), and
// otherwise every eighth listing, in case the process has run another
// program since.
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
        std::chrono::milliseconds rescanAfter{3000};
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

    // What the last listings saw of a process of the user.
    struct Seen {
        ino_t inode = 0;                 // of the /proc entry
        std::optional<std::string> name; // none: not the user's, or gone
    };

    [[nodiscard]] const AppIdentity* identify(ProcessId pid, const std::string& processDir,
                                              const std::string& name) const;
    [[nodiscard]] std::vector<RunningApplication> scan() const;

    Options options_;
    unsigned uid_;
    // Flatpak scopes of the processes seen in the last listing.
    mutable std::map<ProcessId, FlatpakVerdict> flatpakVerdicts_;
    mutable std::map<ProcessId, Seen> seen_;
    mutable std::uint64_t scans_ = 0;
    mutable std::optional<std::chrono::steady_clock::time_point> lastScan_;
    mutable std::vector<RunningApplication> lastListing_;
};

} // namespace hg
