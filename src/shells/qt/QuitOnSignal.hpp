#pragma once

#include <QObject>

class QSocketNotifier;

namespace hg {

// Ends the event loop on SIGTERM, SIGINT and SIGHUP the way the Quit row does,
// so that quitting from a terminal or a session manager also passes through
// the application's will-terminate handling. The signal handler only writes a
// byte to a pipe; the event loop reads it on the main thread. One instance per
// process.
//
// Whatever the main thread is busy with, the program ends within a second of
// the signal: when this object has not been destroyed `quitDeadlineMs` after
// the first signal, the signal takes its default effect (the process ends by
// it), the orderly quit unfinished. Create it before, and so destroy it
// after, everything whose end may block.
class QuitOnSignal final : public QObject {
    Q_OBJECT

public:
    static constexpr int quitDeadlineMs = 800;

    QuitOnSignal();
    ~QuitOnSignal() override;
    QuitOnSignal(const QuitOnSignal&) = delete;
    QuitOnSignal& operator=(const QuitOnSignal&) = delete;

    // False when the pipe could not be made; the signals then keep their
    // default action.
    [[nodiscard]] bool isActive() const { return notifier_ != nullptr; }

private:
    QSocketNotifier* notifier_ = nullptr;
};

} // namespace hg
