#include "backends/macos/MacLoginItems.hpp"

#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

namespace hg {

namespace {

std::optional<std::string> failure(BOOL succeeded, NSError* error) {
    if (succeeded) {
        return std::nullopt;
    }
    const char* description = error.localizedDescription.UTF8String;
    return std::string(description != nullptr ? description : "");
}

} // namespace

LoginItems::Status MacLoginItems::status() const {
    switch (SMAppService.mainAppService.status) {
    case SMAppServiceStatusNotRegistered:
        return Status::notRegistered;
    case SMAppServiceStatusEnabled:
        return Status::enabled;
    case SMAppServiceStatusRequiresApproval:
        return Status::requiresApproval;
    case SMAppServiceStatusNotFound:
        return Status::notFound;
    }
    return Status::notFound;
}

std::optional<std::string> MacLoginItems::registerItem() {
    NSError* error = nil;
    const BOOL succeeded = [SMAppService.mainAppService registerAndReturnError:&error];
    return failure(succeeded, error);
}

std::optional<std::string> MacLoginItems::unregisterItem() {
    NSError* error = nil;
    const BOOL succeeded = [SMAppService.mainAppService unregisterAndReturnError:&error];
    return failure(succeeded, error);
}

} // namespace hg
