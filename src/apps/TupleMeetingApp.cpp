#include "apps/TupleMeetingApp.hpp"

#include "apps/RunningAppPID.hpp"
#include "apps/TupleState.hpp"
#include "apps/Utf8.hpp"

namespace hg {

namespace {

constexpr std::string_view bundleID = "app.tuple.app";

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) {
            text += ' ';
        }
        text += words[i];
    }
    return text;
}

} // namespace

TupleMeetingApp::TupleMeetingApp(std::string cliPath, RunningApplications& applications,
                                 FileSystem& files, ProcessRunner& processes, LineSink& out)
    : cliPath_(std::move(cliPath)), applications_(applications), files_(files),
      processes_(processes), out_(out) {}

bool TupleMeetingApp::isTupleRunning() const {
    return runningAppPID(applications_, bundleID).has_value();
}

std::optional<std::string> TupleMeetingApp::runCLI(const std::vector<std::string>& arguments,
                                                   std::chrono::milliseconds timeout) {
    const ProcessResult result = processes_.run(cliPath_, arguments, timeout);
    lastRunTimedOut_ = result.timedOut;
    if (result.launchError) {
        out_.line("Tuple CLI error: " + *result.launchError);
        return std::nullopt;
    }
    // Either stream may be anything; one that is not UTF-8 counts as absent.
    std::optional<std::string> output;
    if (utf8::isValid(result.standardOutput)) {
        output = result.standardOutput;
    }
    std::optional<std::string> errors;
    if (utf8::isValid(result.standardError)) {
        errors = result.standardError;
    }

    if (result.exitStatus == 0) {
        if (errors && !errors->empty()) {
            out_.line("Tuple CLI '" + joined(arguments) + "' stderr: " + *errors);
        }
        return output;
    }
    out_.line("Tuple CLI '" + joined(arguments) + "' failed: exit=" +
              std::to_string(result.exitStatus) + " stderr=" + errors.value_or(std::string()));
    return std::nullopt;
}

MeetingStatus TupleMeetingApp::fetchStatus() {
    if (!isTupleRunning()) {
        return MeetingStatus::notRunning;
    }
    if (!files_.fileExists(cliPath_)) {
        return MeetingStatus::setupError;
    }
    if (stateReadsToSkip_ > 0) {
        --stateReadsToSkip_;
        return MeetingStatus::error;
    }
    const auto output = runCLI({"state", "--format", "json"}, stateReadTimeout);
    if (lastRunTimedOut_) {
        stateReadsToSkip_ = stateReadsSkippedAfterTimeout;
    }
    if (!output) {
        return MeetingStatus::error;
    }
    return decodeTupleState(*output);
}

MeetingStatus TupleMeetingApp::toggleMute(MeetingStatus fromStatus) {
    out_.line("Tuple toggleMute: fromStatus=" + std::string(toString(fromStatus)));
    if (fromStatus != MeetingStatus::onMute && fromStatus != MeetingStatus::offMute) {
        out_.line("Tuple toggleMute: not in mute/unmute state, bailing");
        return fromStatus;
    }
    const std::string word = fromStatus == MeetingStatus::onMute ? "unmute" : "mute";
    out_.line("Tuple toggleMute: sending '" + word + "'");
    return runCLI({"call", word}) ? MeetingStatus::offMute : MeetingStatus::error;
}

bool TupleMeetingApp::needsSetup() {
    return isTupleRunning() && !files_.fileExists(cliPath_);
}

} // namespace hg
