#include "backends/macos/MacRunningApplications.hpp"

#import <AppKit/AppKit.h>

namespace hg {

std::vector<RunningApplication> MacRunningApplications::runningApplications() const {
    std::vector<RunningApplication> out;
    @autoreleasepool {
        NSArray<NSRunningApplication*>* applications =
            NSWorkspace.sharedWorkspace.runningApplications;
        out.reserve(applications.count);
        for (NSRunningApplication* application in applications) {
            RunningApplication entry;
            if (const char* bundleIdentifier = application.bundleIdentifier.UTF8String) {
                entry.bundleIdentifier = bundleIdentifier;
            }
            entry.pid = application.processIdentifier;
            out.push_back(std::move(entry));
        }
    }
    return out;
}

} // namespace hg
