#include "apps/TupleMeetingApp.hpp"

#include "apps/RunningAppPID.hpp"
#include "apps/TupleState.hpp"
#include "apps/Utf8.hpp"

#include <algorithm>

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

// A stream the runner cut short may end inside a character: what was kept
// is judged without that last, incomplete one.
bool isValidKept(std::string_view text, std::size_t dropped) {
    const std::size_t tail = dropped == 0 ? 0 : std::min<std::size_t>(3, text.size());
    for (std::size_t k = 0; k <= tail; ++k) {
        if (utf8::isValid(text.substr(0, text.size() - k))) {
            return true;
        }
    }
    return false;
}

// At most maxLoggedErrorBytes of a standard-error text, cut before a
// character, then how long the whole text was.
std::string forLog(const std::string& text, std::size_t dropped) {
    const std::size_t total = text.size() + dropped;
    if (total <= TupleMeetingApp::maxLoggedErrorBytes) {
        return text;
    }
    std::size_t cut = std::min(text.size(), TupleMeetingApp::maxLoggedErrorBytes);
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U) {
        --cut;
    }
    return text.substr(0, cut) + "\u2026 (" + std::to_string(total) + " bytes)";
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
    if (isValidKept(result.standardOutput, result.droppedOutputBytes)) {
        output = result.standardOutput;
    }
    std::string errors;
    if (isValidKept(result.standardError, result.droppedErrorBytes)) {
        errors = forLog(result.standardError, result.droppedErrorBytes);
    }

    const std::string command = "Tuple CLI '" + joined(arguments) + "'";
    if (result.exitStatus == 0 && !result.endedBySignal) {
        if (!errors.empty()) {
            out_.line(command + " stderr: " + errors);
        }
        return output;
    }
    if (result.endedBySignal) {
        out_.line(command + " failed: signal=" + std::to_string(result.exitStatus) +
                  (result.timedOut ? " (timed out)" : "") + " stderr=" + errors);
    } else {
        out_.line(command + " failed: exit=" + std::to_string(result.exitStatus) +
                  " stderr=" + errors);
    }
    return std::nullopt;
}

MeetingStatus TupleMeetingApp::fetchStatus() {
    answeredLate_ = false;
    if (!isTupleRunning()) {
        return MeetingStatus::notRunning;
    }
    if (!files_.fileExists(cliPath_)) {
        return MeetingStatus::setupError;
    }
    if (stateReadsToSkip_ > 0) {
        --stateReadsToSkip_;
        answeredLate_ = true;
        return MeetingStatus::error;
    }
    const auto output = runCLI({"state", "--format", "json"}, stateReadTimeout);
    if (lastRunTimedOut_) {
        stateReadsToSkip_ = stateReadsSkippedAfterTimeout;
        answeredLate_ = true;
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
