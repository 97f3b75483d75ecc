#pragma once

#include <chrono>
#include <functional>
#include <pulse/context.h>
#include <pulse/mainloop.h>
#include <pulse/operation.h>
#include <string>
#include <vector>

namespace hg {

// One client connection to the PulseAudio server (PipeWire's pipewire-pulse
// serves the same protocol), driven on the calling thread by a pa_mainloop
// that only ever runs for a bounded time: nothing here waits longer than the
// deadline it is given, also when the server accepts the connection and then
// hangs. Never starts a server. Not thread-safe; main thread only.
class PulseConnection {
public:
    using Clock = std::chrono::steady_clock;

    // `onChange` runs, from inside a later call of this object, for every
    // change the server reports about sources, source outputs and its own
    // defaults.
    explicit PulseConnection(std::function<void()> onChange);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    // Connects and subscribes to changes. False, with the reason in `why`,
    // when the server cannot be reached or does not answer before `deadline`.
    bool connect(Clock::time_point deadline, std::string& why);

    // Whether the connection stands; handles what the server has sent
    // meanwhile (change notices, a closed connection) without waiting.
    bool isReady();

    // Runs the loop until `operation` (taken over) completes. False, with the
    // reason in `why`, when the connection fails or `deadline` passes first;
    // the operation is then cancelled, so its callback never runs later.
    bool await(pa_operation* operation, Clock::time_point deadline, std::string& why);

    [[nodiscard]] pa_context* context() const { return context_; }

    // The descriptors the loop waited on for reading in its latest poll: what
    // to watch from another loop to learn, without waiting, that the server
    // has sent something (isReady() then handles it).
    [[nodiscard]] const std::vector<int>& readDescriptors() const { return readDescriptors_; }

private:
    // One poll of at most the time left until `deadline`, then dispatch.
    bool iterate(Clock::time_point deadline);
    [[nodiscard]] std::string lastError() const;

    std::function<void()> onChange_;
    std::vector<int> readDescriptors_;
    pa_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
};

} // namespace hg
