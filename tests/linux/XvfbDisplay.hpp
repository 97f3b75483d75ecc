#pragma once

#include <string>
#include <sys/types.h>

namespace hg::test {

// A private X server (Xvfb) on the first free display, for the keyboard
// tests. It ends with the object. DISPLAY is not changed here.
class XvfbDisplay {
public:
    XvfbDisplay();
    ~XvfbDisplay();
    XvfbDisplay(const XvfbDisplay&) = delete;
    XvfbDisplay& operator=(const XvfbDisplay&) = delete;

    // ":N", or empty when the server did not start (see failure()).
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] const std::string& failure() const { return failure_; }

private:
    pid_t pid_ = -1;
    std::string name_;
    std::string failure_;
};

} // namespace hg::test
