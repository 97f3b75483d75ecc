#include "backends/linux/ProcRunningApplications.hpp"

#include <algorithm>
#include <charconv>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace hg {

namespace {

std::optional<ProcessId> processIdOf(const char* name) {
    ProcessId pid = 0;
    const char* end = name + std::char_traits<char>::length(name);
    const auto [last, error] = std::from_chars(name, end, pid);
    if (error != std::errc() || last != end || pid <= 0) {
        return std::nullopt;
    }
    return pid;
}

// A small file of /proc, read with plain system calls: this runs for every
// process of the machine on every watcher tick. None when it cannot be read.
std::optional<std::string> readFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return std::nullopt;
    }
    std::string text;
    char buffer[1024];
    ssize_t n = 0;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fd);
    if (n < 0) {
        return std::nullopt;
    }
    return text;
}

// The process name without its line feed; none when it cannot be read (the
// process is gone).
std::optional<std::string> processName(const std::string& processDir) {
    auto text = readFile(processDir + "/comm");
    if (!text) {
        return std::nullopt;
    }
    if (!text->empty() && text->back() == '\n') {
        text->pop_back();
    }
    return text;
}

// Whether the process has exited but not been reaped ("Z"), or is dead ("X").
// The state follows the last ')' of /proc/PID/stat: the name may hold any byte.
bool isDead(const std::string& processDir) {
    const auto stat = readFile(processDir + "/stat");
    if (!stat) {
        return true;
    }
    const auto paren = stat->rfind(')');
    if (paren == std::string::npos || paren + 2 >= stat->size()) {
        return true;
    }
    const char state = (*stat)[paren + 2];
    return state == 'Z' || state == 'X';
}

bool inFlatpakScope(const std::string& cgroups, const std::string& flatpakId) {
    return cgroups.find("app-flatpak-" + flatpakId + "-") != std::string::npos;
}

} // namespace

ProcRunningApplications::ProcRunningApplications() : ProcRunningApplications(Options{}) {}

ProcRunningApplications::ProcRunningApplications(Options options)
    : options_(std::move(options)), uid_(options_.uid.value_or(::geteuid())) {}

const AppIdentity* ProcRunningApplications::identify(ProcessId pid, const std::string& processDir,
                                                     const std::string& name) const {
    for (const auto& identity : options_.identities) {
        for (const auto& wanted : identity.processNames) {
            if (name == kernelProcessName(wanted)) {
                return &identity;
            }
        }
    }
    // A process stays in the cgroup it was started in, so its Flatpak scope
    // is looked up once, and again only if the pid shows another name.
    auto& known = flatpakVerdicts_[pid];
    if (known.processName == name && known.checked) {
        return known.identity;
    }
    known = FlatpakVerdict{name, true, nullptr};
    std::optional<std::string> cgroups;
    for (const auto& identity : options_.identities) {
        for (const auto& flatpakId : identity.flatpakIds) {
            if (!cgroups) {
                cgroups = readFile(processDir + "/cgroup").value_or(std::string());
            }
            if (inFlatpakScope(*cgroups, flatpakId)) {
                known.identity = &identity;
                return &identity;
            }
        }
    }
    return nullptr;
}

std::vector<RunningApplication> ProcRunningApplications::runningApplications() const {
    const auto now = std::chrono::steady_clock::now();
    if (!lastScan_ || now - *lastScan_ >= options_.rescanAfter) {
        lastListing_ = scan();
        lastScan_ = now;
    } else {
        std::erase_if(lastListing_, [this](const RunningApplication& app) {
            return isDead(options_.procRoot + "/" + std::to_string(app.pid));
        });
    }
    return lastListing_;
}

std::vector<RunningApplication> ProcRunningApplications::scan() const {
    ++scans_;
    std::vector<RunningApplication> found;
    std::set<ProcessId> live;
    DIR* dir = ::opendir(options_.procRoot.c_str());
    if (dir == nullptr) {
        return found;
    }
    while (const dirent* entry = ::readdir(dir)) {
        const auto pid = processIdOf(entry->d_name);
        if (!pid) {
            continue;
        }
        live.insert(*pid);
        const std::string processDir = options_.procRoot + "/" + entry->d_name;
        // A /proc entry made anew (a new process, perhaps with a reused pid)
        // has another inode number: only then, and every eighth listing in
        // case the process has run another program, is it looked at again.
        Seen& known = seen_[*pid];
        const bool recheck = (static_cast<std::uint64_t>(*pid) + scans_) % 8 == 0;
        if (known.inode != entry->d_ino || recheck) {
            if (known.inode != entry->d_ino) {
                flatpakVerdicts_.erase(*pid);
            }
            // /proc/PID belongs to the process's effective user.
            struct stat info {};
            const bool ours =
                ::fstatat(::dirfd(dir), entry->d_name, &info, 0) == 0 && info.st_uid == uid_;
            known = Seen{entry->d_ino, ours ? processName(processDir) : std::nullopt};
        }
        if (!known.name) {
            continue;
        }
        const AppIdentity* identity = identify(*pid, processDir, *known.name);
        if (identity == nullptr || isDead(processDir)) {
            continue;
        }
        found.push_back(RunningApplication{identity->bundleIdentifier, *pid});
    }
    ::closedir(dir);
    std::erase_if(flatpakVerdicts_,
                  [&live](const auto& entry) { return !live.contains(entry.first); });
    std::erase_if(seen_, [&live](const auto& entry) { return !live.contains(entry.first); });

    std::sort(
        found.begin(), found.end(),
        [](const RunningApplication& a, const RunningApplication& b) { return a.pid < b.pid; });

    std::map<std::string, int> perBundle;
    for (const auto& app : found) {
        ++perBundle[*app.bundleIdentifier];
    }
    const bool shared = std::any_of(perBundle.begin(), perBundle.end(),
                                    [](const auto& entry) { return entry.second > 1; });
    if (shared && options_.registeredProcesses) {
        const auto registeredList = options_.registeredProcesses();
        const std::set<ProcessId> registered(registeredList.begin(), registeredList.end());
        std::stable_partition(found.begin(), found.end(), [&](const RunningApplication& app) {
            return registered.contains(app.pid);
        });
    }
    return found;
}

} // namespace hg
