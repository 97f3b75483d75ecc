// The commands that drive the simulated meeting applications and the default
// audio input.
#include "shells/sim/SimInterpreter.hpp"

#include <limits>
#include <map>
#include <string>

namespace hg::sim {

namespace {

template <typename Value>
Value choose(const std::map<std::string, Value, std::less<>>& choices, const std::string& word,
             const std::string& command) {
    const auto it = choices.find(word);
    if (it != choices.end()) {
        return it->second;
    }
    std::string expected;
    for (const auto& [name, value] : choices) {
        expected += (expected.empty() ? "" : ", ") + name;
    }
    throw ScriptError("'" + command + "': expected one of " + expected + ", not '" + word + "'");
}

} // namespace

void SimInterpreter::zoom(const ScriptLine& line) {
    requireWords(line, 2, true);
    const std::string& verb = line.word(1);
    SimZoom& zoom = desktop_.zoom;
    if (verb == "start" || verb == "stop" || verb == "heal") {
        requireWords(line, 2);
        if (verb == "start") {
            zoom.start(desktop_.nextPid());
        } else if (verb == "stop") {
            zoom.stop();
        } else {
            desktop_.accessibility.heal();
        }
    } else if (verb == "meeting") {
        requireWords(line, 3);
        static const std::map<std::string, SimZoom::Meeting, std::less<>> meetings = {
            {"off", SimZoom::Meeting::off},         {"muted", SimZoom::Meeting::muted},
            {"unmuted", SimZoom::Meeting::unmuted}, {"both", SimZoom::Meeting::both},
            {"neither", SimZoom::Meeting::neither},
        };
        const auto meeting = choose(meetings, line.word(2), "zoom meeting");
        if (!zoom.isRunning()) {
            throw ScriptError("'zoom meeting' while Zoom is not running");
        }
        zoom.setMeeting(meeting);
    } else if (verb == "unresponsive") {
        requireWords(line, 3);
        static const std::map<std::string, bool, std::less<>> switches = {{"on", true},
                                                                          {"off", false}};
        const bool unresponsive = choose(switches, line.word(2), "zoom unresponsive");
        if (!zoom.isRunning()) {
            throw ScriptError("'zoom unresponsive' while Zoom is not running");
        }
        zoom.setUnresponsive(unresponsive);
    } else if (verb == "title") {
        requireWords(line, 4);
        if (!zoom.rename(line.word(2), line.word(3))) {
            ignored(line);
        }
    } else if (verb == "fail") {
        requireWords(line, 4);
        static const std::map<std::string, AXOp, std::less<>> ops = {
            {"menubar", AXOp::menubar}, {"children", AXOp::children}, {"role", AXOp::role},
            {"title", AXOp::title},     {"press", AXOp::press},
        };
        const AXOp op = choose(ops, line.word(2), "zoom fail");
        const auto code = parseInteger(line.word(3));
        if (!code || *code == 0 || *code < std::numeric_limits<AXError>::min() ||
            *code > std::numeric_limits<AXError>::max()) {
            throw ScriptError("'zoom fail': bad AXError code '" + line.word(3) + "'");
        }
        desktop_.accessibility.fail(op, static_cast<AXError>(*code));
    } else {
        throw ScriptError("'zoom': unknown action '" + verb + "'");
    }
}

void SimInterpreter::tuple(const ScriptLine& line) {
    line.checkWords(2);
    requireWords(line, 2, true);
    const std::string& verb = line.word(1);
    SimTuple& tuple = desktop_.tuple;
    if (verb == "start" || verb == "stop") {
        requireWords(line, 2);
        if (verb == "start") {
            tuple.start(desktop_.nextPid());
        } else {
            tuple.stop();
        }
    } else if (verb == "cli") {
        requireWords(line, 3);
        static const std::map<std::string, SimTuple::Tool, std::less<>> tools = {
            {"installed", SimTuple::Tool::installed},
            {"missing", SimTuple::Tool::missing},
            {"broken", SimTuple::Tool::broken},
        };
        tuple.setTool(choose(tools, line.word(2), "tuple cli"));
    } else if (verb == "call") {
        requireWords(line, 3);
        static const std::map<std::string, SimTuple::Call, std::less<>> calls = {
            {"off", SimTuple::Call::off},
            {"muted", SimTuple::Call::muted},
            {"unmuted", SimTuple::Call::unmuted},
        };
        tuple.setCall(choose(calls, line.word(2), "tuple call"));
    } else if (verb == "state") {
        tuple.printState(line.rest(2));
    } else if (verb == "result") {
        line.checkWords(3);
        if (line.size() < 3) {
            throw ScriptError("'tuple result': expected an exit status");
        }
        const auto status = parseInteger(line.word(2));
        if (!status || *status < std::numeric_limits<int>::min() ||
            *status > std::numeric_limits<int>::max()) {
            throw ScriptError("'tuple result': bad exit status '" + line.word(2) + "'");
        }
        tuple.setResult(static_cast<int>(*status), line.rest(3));
    } else {
        throw ScriptError("'tuple': unknown action '" + verb + "'");
    }
}

void SimInterpreter::mic(const ScriptLine& line) {
    requireWords(line, 3);
    static const std::map<std::string, bool FakeMicrophone::*, std::less<>> settings = {
        {"record", &FakeMicrophone::recording},
        {"mute", &FakeMicrophone::muted},
        {"fail", &FakeMicrophone::failing},
    };
    static const std::map<std::string, bool, std::less<>> values = {{"on", true}, {"off", false}};
    const auto setting = choose(settings, line.word(1), "mic");
    desktop_.microphone.*setting = choose(values, line.word(2), "mic " + line.word(1));
}

} // namespace hg::sim
