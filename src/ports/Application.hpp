#pragma once

namespace hg {

// The running application object.
class Application {
public:
    virtual ~Application() = default;

    // Brings the application to the front, ignoring other applications.
    virtual void activate() = 0;

    // Asks the application to terminate: the delegate's will-terminate handling
    // runs, then the event loop ends.
    virtual void terminate() = 0;
};

} // namespace hg
