#pragma once

#include <memory>

namespace hg::mac {

// Quits on SIGTERM and SIGINT the way the Quit row does ([NSApp terminate:]),
// so that a stop from a terminal, launchd or a test also passes through the
// application's will-terminate handling and its farewell line, and the
// process ends with status 0. The signals' default action is replaced for as
// long as this lives; their handling runs on the main queue. One per process.
class TerminateOnSignal {
public:
    TerminateOnSignal();
    ~TerminateOnSignal();
    TerminateOnSignal(const TerminateOnSignal&) = delete;
    TerminateOnSignal& operator=(const TerminateOnSignal&) = delete;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg::mac
