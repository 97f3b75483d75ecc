#include "XvfbDisplay.hpp"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hg::test {

XvfbDisplay::XvfbDisplay() {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        failure_ = std::string("pipe: ") + std::strerror(errno);
        return;
    }
    // Xvfb writes the display number it chose to fd 3 once it accepts clients.
    // It dies with this process, however this process ends.
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (fds[1] == 3) {
            fcntl(3, F_SETFD, 0);
        } else {
            dup2(fds[1], 3);
        }
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        dup2(null, 2);
        execlp("Xvfb", "Xvfb", "-displayfd", "3", "-nolisten", "tcp", "-screen", "0", "640x480x24",
               "-nocursor", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    if (pid_ < 0) {
        close(fds[0]);
        failure_ = std::string("fork: ") + std::strerror(errno);
        return;
    }
    std::string number;
    pollfd readable{fds[0], POLLIN, 0};
    while (number.find('\n') == std::string::npos && poll(&readable, 1, 10000) > 0) {
        char buffer[16];
        const ssize_t got = read(fds[0], buffer, sizeof buffer);
        if (got <= 0) {
            break;
        }
        number.append(buffer, static_cast<std::size_t>(got));
    }
    close(fds[0]);
    if (number.find('\n') == std::string::npos) {
        failure_ = "Xvfb did not start (is it installed?)";
        return;
    }
    // Built and appended, not concatenated or assigned: GCC 12 at -O3 warns
    // falsely (-Wrestrict) about both.
    std::string name(":");
    name.append(number, 0, number.find('\n'));
    name_ = std::move(name);
}

XvfbDisplay::~XvfbDisplay() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
}

} // namespace hg::test
