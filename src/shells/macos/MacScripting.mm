#include "shells/macos/MacScripting.hpp"

#include "app/RemoteCommand.hpp"
#include "app/RemoteControl.hpp"
#include "app/StatusReport.hpp"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>
#include <chrono>
#include <string>
#include <vector>

namespace {

hg::IssuedAt arrivedNow() {
    return std::chrono::duration_cast<hg::IssuedAt>(
        std::chrono::steady_clock::now().time_since_epoch());
}

NSString* toNSString(const std::string& text) {
    NSString* string = [[NSString alloc] initWithBytes:text.data()
                                                length:text.size()
                                              encoding:NSUTF8StringEncoding];
    return string != nil ? string : @"";
}

} // namespace

struct hg::mac::MacScripting::State {
    RemoteControl& remote;
    LineSink& out;
    bool started = false;
    // Links that came while the program was starting; a few at most.
    std::vector<RemoteCommand> waiting;
    ObjectWillChange::Subscription subscription;
    bool postPending = false;
    std::string posted;
    id urlHandler = nil;

    void run(RemoteCommand command);
    void statusMayChange();
    void post(const StatusReport& report);
};

// The one instance, for the script commands and the application's keys.
static hg::mac::MacScripting::State* theScripting = nullptr;

void hg::mac::MacScripting::State::run(RemoteCommand command) {
    switch (command) {
    case RemoteCommand::toggle:
        remote.toggle();
        return;
    case RemoteCommand::mute:
    case RemoteCommand::unmute:
        (void)remote.setMuted(command == RemoteCommand::mute);
        return;
    case RemoteCommand::press:
        remote.press(arrivedNow());
        return;
    case RemoteCommand::release:
        remote.release(arrivedNow());
        return;
    case RemoteCommand::preferences:
        remote.showPreferences();
        return;
    case RemoteCommand::debug:
        remote.showDebugView();
        return;
    case RemoteCommand::status:
        return;
    }
}

void hg::mac::MacScripting::State::statusMayChange() {
    // Announced before the change: the new status is there on the next turn.
    if (postPending) {
        return;
    }
    postPending = true;
    dispatch_async(dispatch_get_main_queue(), ^{
      if (theScripting == nullptr) {
          return;
      }
      theScripting->postPending = false;
      theScripting->post({theScripting->remote.status(), theScripting->remote.activeAppName()});
    });
}

void hg::mac::MacScripting::State::post(const StatusReport& report) {
    const std::string json = report.json();
    if (json == posted) {
        return;
    }
    posted = json;
    NSString* status = report.status ? toNSString(std::string(toString(*report.status)))
                                     : toNSString(std::string(StatusReport::unavailable));
    [[NSDistributedNotificationCenter defaultCenter]
        postNotificationName:@(statusNotification)
                      object:nil
                    userInfo:@{@"status" : status, @"app" : toNSString(report.app)}
          deliverImmediately:YES];
}

// Receives hushgremlin:// links.
@interface HGURLHandler : NSObject
- (void)handleURLEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation HGURLHandler
- (void)handleURLEvent:(NSAppleEventDescriptor*)event
        withReplyEvent:(NSAppleEventDescriptor*)reply {
    (void)reply;
    if (theScripting == nullptr) {
        return;
    }
    NSString* url = [[event paramDescriptorForKeyword:keyDirectObject] stringValue];
    const char* bytes = url != nil ? url.UTF8String : nullptr;
    const auto command =
        bytes != nullptr ? hg::commandFromUrl(bytes) : std::optional<hg::RemoteCommand>();
    if (!command) {
        theScripting->out.line("Scripting: a hushgremlin:// link that names no command");
        return;
    }
    if (!theScripting->started) {
        if (theScripting->waiting.size() < 8) {
            theScripting->waiting.push_back(*command);
        }
        return;
    }
    theScripting->run(*command);
}
@end

// The dictionary's commands. Each answers an error while the program is still
// starting; `mute` and `unmute` answer one when the call did not end in the
// asked state.
@interface HGScriptCommand : NSScriptCommand
@end

@implementation HGScriptCommand
- (hg::RemoteCommand)remoteCommand {
    return hg::RemoteCommand::toggle;
}

- (id)performDefaultImplementation {
    if (theScripting == nullptr || !theScripting->started) {
        self.scriptErrorNumber = hg::mac::noCallError;
        self.scriptErrorString = @"HushGremlin is starting";
        return nil;
    }
    hg::RemoteControl& remote = theScripting->remote;
    const hg::RemoteCommand command = [self remoteCommand];
    if (command == hg::RemoteCommand::mute || command == hg::RemoteCommand::unmute) {
        const bool muted = command == hg::RemoteCommand::mute;
        const hg::MuteResult result = remote.setMuted(muted);
        if (result != hg::MuteResult::done) {
            self.scriptErrorNumber =
                result == hg::MuteResult::noCall ? hg::mac::noCallError : hg::mac::refusedError;
            self.scriptErrorString =
                toNSString(hg::muteFailureLine(result, muted, remote.status()));
        }
        return nil;
    }
    if (command == hg::RemoteCommand::press || command == hg::RemoteCommand::release) {
        id given = self.evaluatedArguments[@"issuedAt"];
        const hg::IssuedAt at =
            [given isKindOfClass:[NSNumber class]]
                ? hg::IssuedAt(static_cast<long long>([static_cast<NSNumber*>(given) doubleValue]))
                : arrivedNow();
        if (command == hg::RemoteCommand::press) {
            remote.press(at);
        } else {
            remote.release(at);
        }
        return nil;
    }
    theScripting->run(command);
    return nil;
}
@end

@interface HGToggleScriptCommand : HGScriptCommand
@end
@implementation HGToggleScriptCommand
@end

@interface HGMuteScriptCommand : HGScriptCommand
@end
@implementation HGMuteScriptCommand
- (hg::RemoteCommand)remoteCommand {
    return hg::RemoteCommand::mute;
}
@end

@interface HGUnmuteScriptCommand : HGScriptCommand
@end
@implementation HGUnmuteScriptCommand
- (hg::RemoteCommand)remoteCommand {
    return hg::RemoteCommand::unmute;
}
@end

@interface HGPressScriptCommand : HGScriptCommand
@end
@implementation HGPressScriptCommand
- (hg::RemoteCommand)remoteCommand {
    return hg::RemoteCommand::press;
}
@end

@interface HGReleaseScriptCommand : HGScriptCommand
@end
@implementation HGReleaseScriptCommand
- (hg::RemoteCommand)remoteCommand {
    return hg::RemoteCommand::release;
}
@end

// The dictionary's read-only properties of the application.
@interface NSApplication (HGScripting)
- (NSString*)hgStatus;
- (NSString*)hgActiveApp;
@end

@implementation NSApplication (HGScripting)
- (NSString*)hgStatus {
    if (theScripting == nullptr) {
        return @"error";
    }
    return toNSString(std::string(toString(theScripting->remote.status())));
}

- (NSString*)hgActiveApp {
    return theScripting != nullptr ? toNSString(theScripting->remote.activeAppName()) : @"";
}
@end

namespace hg::mac {

MacScripting::MacScripting(RemoteControl& remote, LineSink& out)
    : state_(std::make_unique<State>(State{.remote = remote, .out = out})) {
    theScripting = state_.get();
    state_->urlHandler = [[HGURLHandler alloc] init];
    [[NSAppleEventManager sharedAppleEventManager] setEventHandler:state_->urlHandler
                                                       andSelector:@selector(handleURLEvent:
                                                                             withReplyEvent:)
                                                     forEventClass:kInternetEventClass
                                                        andEventID:kAEGetURL];
    State* state = state_.get();
    state_->subscription =
        remote.statusWillChange().subscribe([state] { state->statusMayChange(); });
}

MacScripting::~MacScripting() {
    [[NSAppleEventManager sharedAppleEventManager]
        removeEventHandlerForEventClass:kInternetEventClass
                             andEventID:kAEGetURL];
    state_->post(StatusReport{});
    theScripting = nullptr;
}

void MacScripting::started() {
    state_->started = true;
    const std::vector<RemoteCommand> waiting = std::move(state_->waiting);
    state_->waiting.clear();
    for (const RemoteCommand command : waiting) {
        state_->run(command);
    }
    state_->post({state_->remote.status(), state_->remote.activeAppName()});
}

} // namespace hg::mac
