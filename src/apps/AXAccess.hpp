#pragma once

#include "ports/Accessibility.hpp"
#include "ports/LineSink.hpp"
#include "ports/RunningApplications.hpp"

#include <optional>
#include <string_view>

namespace hg {

// Reads another application's menu bar and presses its items. Stateless:
// every call starts from the process id or element it is given.
//
// Every failure of an accessibility call is printed as one line (the texts of
// AXErrorText) and then raised as SwiftAXError carrying the code. A read that
// succeeds with a value of an unexpected kind counts as a failure of that read
// with ax::failure. Trust is not tested here: without it the calls fail.
class AXAccess {
public:
    AXAccess(Accessibility& accessibility, RunningApplications& applications, LineSink& out);

    // See the free runningAppPID(); prints nothing.
    [[nodiscard]] std::optional<ProcessId> runningAppPID(std::string_view bundleID) const;

    // The application's menu-bar element. Throws SwiftAXError.
    AXElementRef copyMenuBar(ProcessId pid);

    // The first descendant of `of` titled `title`, or null when there is none.
    // A child whose role is "AXMenu" is searched instead of its siblings after
    // it; so is a child without a title attribute, and that one always
    // compares exactly. With `caseInsensitive` titles match apart from letter
    // case (caseInsensitiveEqual). Throws SwiftAXError.
    AXElementRef findChild(const AXElementRef& of, std::string_view title, bool caseInsensitive);

    // Whether `of`, or a menu below it, lists any element that is not a menu.
    // Prints nothing; a read that fails counts as "yes", since nothing is
    // known then.
    bool holdsItems(const AXElementRef& of);

    // Performs "AXPress". An element that does not support the action counts
    // as pressed (printed, not raised). Throws SwiftAXError.
    void press(const AXElementRef& element);

    [[nodiscard]] Accessibility& accessibility() const { return accessibility_; }

private:
    AXElementRef findChildAtDepth(const AXElementRef& of, std::string_view title,
                                  bool caseInsensitive, int depth);
    bool holdsItemsAtDepth(const AXElementRef& of, int depth);

    Accessibility& accessibility_;
    RunningApplications& applications_;
    LineSink& out_;
};

} // namespace hg
