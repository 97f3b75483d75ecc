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

// The controller class from the bundle's Sparkle.framework, or Nil.
Class loadControllerClass() {
    NSString* frameworks = NSBundle.mainBundle.privateFrameworksPath;
    if (frameworks == nil) {
        return Nil;
    }
    NSBundle* sparkle =
        [NSBundle bundleWithPath:[frameworks stringByAppendingPathComponent:@"Sparkle.framework"]];
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
};

SparkleUpdater::SparkleUpdater(void* delegate, LineSink& out)
    : impl_(std::make_unique<Impl>(Impl{(__bridge id)delegate, out, {}, nil, false})) {}

SparkleUpdater::~SparkleUpdater() = default;

void SparkleUpdater::start(std::function<void()> validUpdateFound) {
    impl_->validUpdateFound = std::move(validUpdateFound);
    if (impl_->started) {
        return;
    }
    impl_->started = true;
    Class controllerClass = loadControllerClass();
    if (controllerClass == Nil) {
        impl_->out.line(offLine);
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

void SparkleUpdater::validUpdateFound() {
    if (impl_->validUpdateFound) {
        impl_->validUpdateFound();
    }
}

} // namespace hg
