#include "shells/macos/MacScriptingClient.hpp"

#include "app/RemoteCommand.hpp"
#include "app/StatusReport.hpp"
#include "shells/macos/MacScripting.hpp"

#import <AppKit/AppKit.h>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace hg::mac {

namespace {

// Long enough for a toggle that waits on a slow meeting application.
constexpr int callTimeoutSeconds = 10;

// The dictionary's suite and its event and property codes (HushGremlin.sdef).
constexpr AEEventClass suite = 'HGsu';
constexpr FourCharCode statusProperty = 'HGst';
constexpr FourCharCode activeAppProperty = 'HGap';
constexpr AEKeyword issuedAtParameter = 'HGia';

void printLine(FILE* stream, const std::string& text) {
    std::fprintf(stream, "%s\n", text.c_str());
    std::fflush(stream);
}

std::optional<AEEventID> eventOf(RemoteCommand command) {
    switch (command) {
    case RemoteCommand::toggle:
        return 'TOGL';
    case RemoteCommand::mute:
        return 'MUTE';
    case RemoteCommand::unmute:
        return 'UNMT';
    case RemoteCommand::press:
        return 'PRES';
    case RemoteCommand::release:
        return 'RELS';
    case RemoteCommand::preferences:
    case RemoteCommand::debug:
    case RemoteCommand::status:
        break;
    }
    return std::nullopt;
}

NSRunningApplication* runningProgram() {
    return [NSRunningApplication runningApplicationsWithBundleIdentifier:@(bundleIdentifier)]
        .firstObject;
}

struct Reply {
    NSAppleEventDescriptor* event = nil;
    // One line saying why there is no answer; empty when there is one.
    std::string failure;
    bool absent = false;
};

Reply send(NSAppleEventDescriptor* event) {
    NSError* error = nil;
    NSAppleEventDescriptor* reply =
        [event sendEventWithOptions:NSAppleEventSendWaitForReply | NSAppleEventSendNeverInteract
                            timeout:callTimeoutSeconds
                              error:&error];
    NSAppleEventDescriptor* errorNumber = [reply paramDescriptorForKeyword:keyErrorNumber];
    const long code = reply != nil ? (errorNumber != nil ? errorNumber.int32Value : 0)
                                   : static_cast<long>(error.code);
    if (code == 0) {
        return {reply, {}, false};
    }
    NSString* message = [[reply paramDescriptorForKeyword:keyErrorString] stringValue];
    if (code == noCallError || code == refusedError) {
        return {nil, message != nil ? message.UTF8String : "HushGremlin could not do it", false};
    }
    if (code == procNotFound || code == connectionInvalid) {
        return {nil, std::string(StatusReport::notRunningLine), true};
    }
    if (code == errAEEventNotPermitted || code == errAEEventWouldRequireUserConsent ||
        code == errAEPrivilegeError) {
        return {nil,
                "HushGremlin cannot be reached: this Mac's privacy settings do not let this "
                "program send it Apple Events (System Settings > Privacy & Security > "
                "Automation)",
                false};
    }
    if (code == errAETimeout) {
        return {nil,
                "HushGremlin did not answer within " + std::to_string(callTimeoutSeconds) +
                    " seconds",
                false};
    }
    return {nil, "HushGremlin could not do it: Apple Event error " + std::to_string(code), false};
}

NSAppleEventDescriptor* eventTo(NSRunningApplication* program, AEEventClass eventClass,
                                AEEventID eventID) {
    NSAppleEventDescriptor* target =
        [NSAppleEventDescriptor descriptorWithProcessIdentifier:program.processIdentifier];
    return [NSAppleEventDescriptor appleEventWithEventClass:eventClass
                                                    eventID:eventID
                                           targetDescriptor:target
                                                   returnID:kAutoGenerateReturnID
                                              transactionID:kAnyTransactionID];
}

// `get <property> of application`.
std::optional<std::string> property(NSRunningApplication* program, FourCharCode code,
                                    Reply& failure) {
    NSAppleEventDescriptor* specifier = [NSAppleEventDescriptor recordDescriptor];
    [specifier setDescriptor:[NSAppleEventDescriptor descriptorWithTypeCode:cProperty]
                  forKeyword:keyAEDesiredClass];
    [specifier setDescriptor:[NSAppleEventDescriptor descriptorWithEnumCode:formPropertyID]
                  forKeyword:keyAEKeyForm];
    [specifier setDescriptor:[NSAppleEventDescriptor descriptorWithTypeCode:code]
                  forKeyword:keyAEKeyData];
    [specifier setDescriptor:[NSAppleEventDescriptor nullDescriptor] forKeyword:keyAEContainer];
    NSAppleEventDescriptor* object = [specifier coerceToDescriptorType:typeObjectSpecifier];
    if (object == nil) {
        failure.failure = "HushGremlin's status could not be asked for";
        return std::nullopt;
    }
    NSAppleEventDescriptor* get = eventTo(program, kAECoreSuite, kAEGetData);
    [get setParamDescriptor:object forKeyword:keyDirectObject];
    failure = send(get);
    if (!failure.failure.empty()) {
        return std::nullopt;
    }
    NSString* value = [[failure.event paramDescriptorForKeyword:keyDirectObject] stringValue];
    return value != nil ? std::optional<std::string>(value.UTF8String) : std::nullopt;
}

// The report now; `failure` says why there is none when the program runs
// but does not answer.
StatusReport currentReport(Reply& failure) {
    NSRunningApplication* program = runningProgram();
    if (program == nil) {
        failure = {nil, std::string(StatusReport::notRunningLine), true};
        return {};
    }
    const auto status = property(program, statusProperty, failure);
    if (!status) {
        return {};
    }
    Reply noApp;
    return {StatusReport::statusNamed(*status),
            property(program, activeAppProperty, noApp).value_or("")};
}

int printStatus(bool json) {
    Reply failure;
    const StatusReport report = currentReport(failure);
    if (!failure.failure.empty() && !failure.absent) {
        printLine(stderr, failure.failure);
        return 1;
    }
    printLine(stdout, json ? report.json() : report.line());
    return report.status ? 0 : 1;
}

int follow(bool json) {
    __block std::string shown;
    void (^show)(const StatusReport&) = ^(const StatusReport& report) {
      std::string text = json ? report.json() : report.line();
      if (text != shown) {
          printLine(stdout, text);
          shown = text;
      }
    };
    // Listening before the first reading, so that no change falls between.
    [[NSDistributedNotificationCenter defaultCenter]
        addObserverForName:@(statusNotification)
                    object:nil
                     queue:[NSOperationQueue mainQueue]
                usingBlock:^(NSNotification* note) {
                  NSString* status = note.userInfo[@"status"];
                  NSString* app = note.userInfo[@"app"];
                  StatusReport report;
                  if ([status isKindOfClass:[NSString class]]) {
                      report.status = StatusReport::statusNamed(status.UTF8String);
                  }
                  if ([app isKindOfClass:[NSString class]]) {
                      report.app = app.UTF8String;
                  }
                  show(report);
                }];
    Reply failure;
    show(currentReport(failure));
    // Ends only when interrupted.
    for (;;) {
        [[NSRunLoop mainRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantFuture]];
    }
}

} // namespace

bool isScriptingCommand(int argc, char** argv) {
    return argc > 1 && argv[1][0] != '-';
}

int runScriptingClient(int argc, char** argv) {
    const auto issuedAt = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    const std::vector<std::string_view> args(argv + 1, argv + argc);
    const auto line = CommandLine::parse(args);
    if (!line) {
        printLine(stderr, std::string(CommandLine::usage));
        return 2;
    }
    @autoreleasepool {
        if (line->command == RemoteCommand::status) {
            return line->follow ? follow(line->json) : printStatus(line->json);
        }
        if (line->command == RemoteCommand::preferences) {
            // The program's own link: the one way in that needs no dictionary.
            if (runningProgram() == nil) {
                printLine(stderr, std::string(StatusReport::notRunningLine));
                return 1;
            }
            NSURL* url = [NSURL URLWithString:@"hushgremlin://preferences"];
            return url != nil && [[NSWorkspace sharedWorkspace] openURL:url] ? 0 : 1;
        }
        if (line->command == RemoteCommand::debug) {
            printLine(stderr, "On a Mac the debug view is the menu's row shown while Option "
                              "is held");
            return 1;
        }
        NSRunningApplication* program = runningProgram();
        if (program == nil) {
            printLine(stderr, std::string(StatusReport::notRunningLine));
            return 1;
        }
        NSAppleEventDescriptor* event = eventTo(program, suite, *eventOf(line->command));
        if (line->command == RemoteCommand::press || line->command == RemoteCommand::release) {
            [event
                setParamDescriptor:[NSAppleEventDescriptor
                                       descriptorWithDouble:static_cast<double>(issuedAt.count())]
                        forKeyword:issuedAtParameter];
        }
        const Reply reply = send(event);
        if (!reply.failure.empty()) {
            printLine(stderr, reply.failure);
            return 1;
        }
        return 0;
    }
}

} // namespace hg::mac
