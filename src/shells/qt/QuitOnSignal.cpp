#include "shells/qt/QuitOnSignal.hpp"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace hg {

namespace {

int signalPipe[2] = {-1, -1};
volatile std::sig_atomic_t quitSignal = 0;

// The quit did not finish in time: the signal takes its default effect.
void onQuitDeadline(int /*signal*/) {
    const int signal = quitSignal;
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void onSignal(int signal) {
    const char byte = 1;
    // Nothing to do about a full pipe: a quit is already on its way.
    [[maybe_unused]] const auto written = ::write(signalPipe[0], &byte, 1);
    if (quitSignal == 0) {
        quitSignal = signal;
        itimerval deadline{};
        deadline.it_value.tv_usec = QuitOnSignal::quitDeadlineMs * 1000;
        ::setitimer(ITIMER_REAL, &deadline, nullptr);
    }
}

} // namespace

QuitOnSignal::QuitOnSignal() {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0) {
        return;
    }
    ::fcntl(signalPipe[0], F_SETFL, O_NONBLOCK);
    notifier_ = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [] {
        char byte = 0;
        [[maybe_unused]] const auto got = ::read(signalPipe[1], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        ::sigaction(signal, &action, nullptr);
    }
    // Until this object goes, so that the deadline also covers what comes
    // after the event loop (the windows, the platform, the delegate).
    struct sigaction deadline {};
    deadline.sa_handler = onQuitDeadline;
    sigemptyset(&deadline.sa_mask);
    ::sigaction(SIGALRM, &deadline, nullptr);
}

QuitOnSignal::~QuitOnSignal() {
    // The quit has come this far: what is left (Qt's own end, and checks a
    // sanitizer makes at exit) is not cut short.
    const itimerval off{};
    ::setitimer(ITIMER_REAL, &off, nullptr);
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGALRM}) {
        ::sigaction(signal, &action, nullptr);
    }
    delete notifier_;
    notifier_ = nullptr;
    ::close(signalPipe[0]);
    ::close(signalPipe[1]);
    signalPipe[0] = signalPipe[1] = -1;
}

} // namespace hg
