#include "shells/macos/SparkleUpdater.hpp"

#import <Foundation/Foundation.h>
#include <utility>

// The two messages sent to Sparkle's SPUStandardUpdaterController, declared
// here so that the build needs no Sparkle header.
@protocol HGStandardUpdaterController <NSObject>
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
- (void)checkForUpdates:(id)sender;
@end

namespace hg {

namespace {

NSString* sparklePath() {
    NSString* frameworks = NSBundle.mainBundle.privateFrameworksPath;
    return frameworks != nil ? [frameworks stringByAppendingPathComponent:@"Sparkle.framework"]
                             : nil;
}

bool hasText(id value) {
    return [value isKindOfClass:NSString.class] && static_cast<NSString*>(value).length > 0;
}

// Why Sparkle cannot run from this bundle, or nothing.
std::optional<std::string> missingPart() {
    NSString* path = sparklePath();
    if (path == nil || ![NSFileManager.defaultManager fileExistsAtPath:path]) {
        return SparkleUpdater::offLine;
    }
    NSDictionary* info = NSBundle.mainBundle.infoDictionary;
    if (!hasText(info[@"SUFeedURL"]) || !hasText(info[@"SUPublicEDKey"])) {
        return SparkleUpdater::noFeedLine;
    }
    return std::nullopt;
}

// The controller class from the bundle's Sparkle.framework, or Nil.
Class loadControllerClass() {
    NSString* path = sparklePath();
    NSBundle* sparkle = path != nil ? [NSBundle bundleWithPath:path] : nil;
    if (sparkle == nil || ![sparkle load]) {
        return Nil;
    }
    return NSClassFromString(@"SPUStandardUpdaterController");
}

} // namespace

struct SparkleUpdater::Impl {
    __weak id delegate;
    LineSink& out;
    std::function<void()> validUpdateFound;
    id<HGStandardUpdaterController> controller;
    bool started = false;
    std::optional<std::string> offReason;
};

SparkleUpdater::SparkleUpdater(void* delegate, LineSink& out)
    : impl_(
          std::make_unique<Impl>(Impl{(__bridge id)delegate, out, {}, nil, false, missingPart()})) {
}

SparkleUpdater::~SparkleUpdater() = default;

void SparkleUpdater::start(std::function<void()> validUpdateFound) {
    impl_->validUpdateFound = std::move(validUpdateFound);
    if (impl_->started) {
        return;
    }
    impl_->started = true;
    Class controllerClass = impl_->offReason ? Nil : loadControllerClass();
    if (!impl_->offReason && controllerClass == Nil) {
        impl_->offReason = loadFailedLine;
    }
    if (impl_->offReason) {
        impl_->out.line(*impl_->offReason);
        return;
    }
    id delegate = impl_->delegate;
    impl_->controller = [static_cast<id<HGStandardUpdaterController>>([controllerClass alloc])
        initWithStartingUpdater:YES
                updaterDelegate:delegate
             userDriverDelegate:delegate];
}

void SparkleUpdater::checkForUpdates() {
    [impl_->controller checkForUpdates:nil];
}

std::optional<std::string> SparkleUpdater::offReason() const {
    return impl_->offReason;
}

void SparkleUpdater::validUpdateFound() {
    if (impl_->validUpdateFound) {
        impl_->validUpdateFound();
    }
}

} // namespace hg
