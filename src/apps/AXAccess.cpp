#include "apps/AXAccess.hpp"

#include "apps/AXErrorText.hpp"
#include "apps/CaseFold.hpp"
#include "apps/RunningAppPID.hpp"
#include "apps/SwiftAXError.hpp"

#include <vector>

namespace hg {

namespace {

// Menus nest a handful of levels deep. A tree that goes deeper than this is
// taken to loop back on itself, and the search gives up with "not found"
// rather than recursing without end.
constexpr int maxSearchDepth = 32;

template <typename T> const T* valueAs(const AXCopyResult& result) {
    if (result.error != ax::success) {
        return nullptr;
    }
    return std::get_if<T>(&result.value);
}

// The code a read ended with: a success without a usable value is a failure.
template <typename T> AXError readError(const AXCopyResult& result) {
    if (result.error != ax::success) {
        return result.error;
    }
    return valueAs<T>(result) == nullptr ? ax::failure : ax::success;
}

} // namespace

AXAccess::AXAccess(Accessibility& accessibility, RunningApplications& applications, LineSink& out)
    : accessibility_(accessibility), applications_(applications), out_(out) {}

std::optional<ProcessId> AXAccess::runningAppPID(std::string_view bundleID) const {
    return hg::runningAppPID(applications_, bundleID);
}

AXElementRef AXAccess::copyMenuBar(ProcessId pid) {
    const AXElementRef application = accessibility_.createApplication(pid);
    const AXCopyResult result = accessibility_.copyAttributeValue(application, "AXMenuBar");
    AXError code = readError<AXElementRef>(result);
    if (code == ax::success && *valueAs<AXElementRef>(result) == nullptr) {
        code = ax::failure;
    }
    if (code != ax::success) {
        out_.line(axErrorText(AXErrorColumn::menuBarChildren, code));
        throw SwiftAXError(code, result.timedOut);
    }
    return *valueAs<AXElementRef>(result);
}

AXElementRef AXAccess::findChild(const AXElementRef& of, std::string_view title,
                                 bool caseInsensitive) {
    return findChildAtDepth(of, title, caseInsensitive, 0);
}

AXElementRef AXAccess::findChildAtDepth(const AXElementRef& of, std::string_view title,
                                        bool caseInsensitive, int depth) {
    if (depth > maxSearchDepth) {
        return nullptr;
    }
    const AXCopyResult childrenResult = accessibility_.copyAttributeValue(of, "AXChildren");
    AXError code = readError<std::vector<AXElementRef>>(childrenResult);
    if (code == ax::success) {
        for (const auto& child : *valueAs<std::vector<AXElementRef>>(childrenResult)) {
            if (child == nullptr) {
                code = ax::failure;
            }
        }
    }
    if (code != ax::success) {
        out_.line("NODICE");
        out_.line(axErrorText(AXErrorColumn::menuBarChildren, code));
        throw SwiftAXError(code, childrenResult.timedOut);
    }

    for (const auto& child : *valueAs<std::vector<AXElementRef>>(childrenResult)) {
        // A failed role read is not worth a line: plenty of elements lack one.
        const AXCopyResult role = accessibility_.copyAttributeValue(child, "AXRole");
        if (const auto* text = valueAs<std::string>(role); text != nullptr && *text == "AXMenu") {
            return findChildAtDepth(child, title, caseInsensitive, depth + 1);
        }

        const AXCopyResult titleResult = accessibility_.copyAttributeValue(child, "AXTitle");
        const AXError titleCode = readError<std::string>(titleResult);
        if (titleCode == ax::attributeUnsupported) {
            out_.line(axErrorText(AXErrorColumn::title, titleCode));
            return findChildAtDepth(child, title, false, depth + 1);
        }
        if (titleCode != ax::success) {
            out_.line(axErrorText(AXErrorColumn::title, titleCode));
            throw SwiftAXError(titleCode, titleResult.timedOut);
        }
        const std::string& childTitle = *valueAs<std::string>(titleResult);
        if (caseInsensitive ? caseInsensitiveEqual(childTitle, title) : childTitle == title) {
            return child;
        }
    }
    return nullptr;
}

bool AXAccess::holdsItems(const AXElementRef& of) {
    return holdsItemsAtDepth(of, 0);
}

bool AXAccess::holdsItemsAtDepth(const AXElementRef& of, int depth) {
    const AXCopyResult result = accessibility_.copyAttributeValue(of, "AXChildren");
    const auto* children = valueAs<std::vector<AXElementRef>>(result);
    if (children == nullptr || depth > maxSearchDepth) {
        return true;
    }
    for (const auto& child : *children) {
        const AXCopyResult role = accessibility_.copyAttributeValue(child, "AXRole");
        const auto* text = valueAs<std::string>(role);
        if (text == nullptr || *text != "AXMenu" || holdsItemsAtDepth(child, depth + 1)) {
            return true;
        }
    }
    return false;
}

void AXAccess::press(const AXElementRef& element) {
    const AXError code = accessibility_.performAction(element, "AXPress");
    if (code == ax::success) {
        return;
    }
    out_.line(axErrorText(AXErrorColumn::press, code));
    if (code == ax::actionUnsupported) {
        return;
    }
    throw SwiftAXError(code);
}

} // namespace hg
