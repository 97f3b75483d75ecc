#include "shells/sim/SimInterpreter.hpp"

#include "core/UserData.hpp"

#include <map>
#include <string>

namespace hg::sim {

namespace {

using Command = void (SimInterpreter::*)(const ScriptLine&);

std::string boolText(bool value) {
    return value ? "true" : "false";
}

bool parseBool(const std::string& word, const char* command) {
    if (word == "true") {
        return true;
    }
    if (word == "false") {
        return false;
    }
    throw ScriptError(std::string(command) + ": expected true or false, not '" + word + "'");
}

std::string describeValue(const DefaultsValue& value) {
    if (const auto* b = std::get_if<bool>(&value)) {
        return "bool " + boolText(*b);
    }
    if (const auto* i = std::get_if<std::int64_t>(&value)) {
        return "int " + std::to_string(*i);
    }
    if (const auto* d = std::get_if<double>(&value)) {
        return "real " + std::to_string(*d);
    }
    if (const auto* s = std::get_if<std::string>(&value)) {
        return "string " + *s;
    }
    const auto& bytes = std::get<Bytes>(value);
    return "data " + std::string(bytes.begin(), bytes.end());
}

} // namespace

int SimInterpreter::run(std::istream& script, std::ostream& errors) {
    std::string text;
    int number = 0;
    while (!finished() && std::getline(script, text)) {
        ++number;
        try {
            runLine(text);
        } catch (const ScriptError& error) {
            out_.flush();
            errors << "sim: line " << number << ": " << error.what() << '\n';
            return 2;
        }
    }
    out_.flush();
    return 0;
}

void SimInterpreter::runLine(std::string_view text) {
    const ScriptLine line(text);
    if (line.isEmpty()) {
        return;
    }
    line.checkWords(1);
    dispatch(line);
    desktop_.simWindows.traceRecorder();
}

void SimInterpreter::dispatch(const ScriptLine& line) {
    static const std::map<std::string, Command, std::less<>> commands = {
        {"launch", &SimInterpreter::launch},     {"quit", &SimInterpreter::quit},
        {"wait", &SimInterpreter::wait},         {"trust", &SimInterpreter::trust},
        {"defaults", &SimInterpreter::defaults}, {"update", &SimInterpreter::update},
        {"login", &SimInterpreter::login},       {"show", &SimInterpreter::show},
        {"zoom", &SimInterpreter::zoom},         {"tuple", &SimInterpreter::tuple},
        {"key", &SimInterpreter::key},           {"flags", &SimInterpreter::flags},
        {"tap", &SimInterpreter::tap},           {"menu", &SimInterpreter::menu},
        {"window", &SimInterpreter::window},     {"recorder", &SimInterpreter::recorder},
        {"mic", &SimInterpreter::mic},
    };
    const auto it = commands.find(line.word(0));
    if (it == commands.end()) {
        throw ScriptError("unknown command '" + line.word(0) + "'");
    }
    (this->*(it->second))(line);
}

void SimInterpreter::requireApp(const ScriptLine& line) const {
    if (!desktop_.launched()) {
        throw ScriptError("'" + line.word(0) + "' before 'launch'");
    }
}

void SimInterpreter::requireWords(const ScriptLine& line, std::size_t count, bool atLeast) {
    line.checkWords(count);
    if (line.size() < count || (!atLeast && line.size() > count)) {
        throw ScriptError("'" + line.word(0) + "': expected " + (atLeast ? "at least " : "") +
                          std::to_string(count - 1) + " argument" + (count == 2 ? "" : "s"));
    }
}

void SimInterpreter::ignored(const ScriptLine& line) {
    out_.observe("ignored: " + line.trimmed());
}

void SimInterpreter::launch(const ScriptLine& line) {
    requireWords(line, 1);
    if (desktop_.launched()) {
        throw ScriptError("'launch' twice");
    }
    desktop_.launch();
}

void SimInterpreter::quit(const ScriptLine& line) {
    requireWords(line, 1);
    requireApp(line);
    desktop_.application.terminate();
}

void SimInterpreter::wait(const ScriptLine& line) {
    requireWords(line, 2);
    requireApp(line);
    const auto seconds = parseSeconds(line.word(1));
    if (!seconds) {
        throw ScriptError("'wait': bad number of seconds '" + line.word(1) + "'");
    }
    desktop_.timers.advance(*seconds);
}

void SimInterpreter::trust(const ScriptLine& line) {
    requireWords(line, 2);
    if (line.word(1) != "on" && line.word(1) != "off") {
        throw ScriptError("'trust': expected on or off, not '" + line.word(1) + "'");
    }
    desktop_.setTrusted(line.word(1) == "on");
}

void SimInterpreter::defaults(const ScriptLine& line) {
    requireWords(line, 3, true);
    const std::string& verb = line.word(1);
    const std::string& key = line.word(2);
    if (verb == "remove" || verb == "show") {
        requireWords(line, 3);
        if (verb == "remove") {
            desktop_.defaults.removeObject(key);
            return;
        }
        const auto value = desktop_.defaults.objectForKey(key);
        out_.report("defaults " + key + " " + (value ? describeValue(*value) : "absent"));
        return;
    }
    if (verb != "set") {
        throw ScriptError("'defaults': unknown action '" + verb + "'");
    }
    requireWords(line, 4, true);
    const std::string& type = line.word(3);
    if (type == "string" || type == "data") {
        const std::string text = line.rest(4);
        if (type == "string") {
            desktop_.defaults.setObject(key, DefaultsValue{text});
        } else {
            desktop_.defaults.setObject(key, DefaultsValue{Bytes(text.begin(), text.end())});
        }
        return;
    }
    requireWords(line, 5);
    if (type == "bool") {
        desktop_.defaults.setObject(key, DefaultsValue{parseBool(line.word(4), "defaults")});
    } else if (type == "int") {
        const auto value = parseInteger(line.word(4));
        if (!value) {
            throw ScriptError("'defaults': bad integer '" + line.word(4) + "'");
        }
        desktop_.defaults.setObject(key, DefaultsValue{*value});
    } else {
        throw ScriptError("'defaults': unknown type '" + type + "'");
    }
}

void SimInterpreter::update(const ScriptLine& line) {
    requireWords(line, 2);
    if (line.word(1) != "found") {
        throw ScriptError("'update': expected found, not '" + line.word(1) + "'");
    }
    requireApp(line);
    desktop_.updater.reportValidUpdate();
}

void SimInterpreter::login(const ScriptLine& line) {
    requireWords(line, 3);
    const std::string& verb = line.word(1);
    const std::string& value = line.word(2);
    if (verb == "external") {
        static const std::map<std::string, LoginItems::Status, std::less<>> states = {
            {"on", LoginItems::Status::enabled},
            {"off", LoginItems::Status::notRegistered},
            {"approval", LoginItems::Status::requiresApproval},
        };
        const auto it = states.find(value);
        if (it == states.end()) {
            throw ScriptError("'login external': expected on, off or approval, not '" + value +
                              "'");
        }
        desktop_.loginItems.setStatus(it->second);
    } else if (verb == "fail") {
        if (value != "on" && value != "off") {
            throw ScriptError("'login fail': expected on or off, not '" + value + "'");
        }
        desktop_.loginItems.fail = value == "on";
    } else {
        throw ScriptError("'login': unknown action '" + verb + "'");
    }
}

void SimInterpreter::show(const ScriptLine& line) {
    requireWords(line, 2);
    if (line.word(1) == "mic") {
        const FakeMicrophone& mic = desktop_.microphone;
        out_.report(std::string("mic record ") + (mic.recording ? "on" : "off") + " mute " +
                    (mic.muted ? "on" : "off"));
        return;
    }
    if (line.word(1) != "store") {
        throw ScriptError("'show': expected store or mic, not '" + line.word(1) + "'");
    }
    requireApp(line);
    showStore();
}

void SimInterpreter::showStore() {
    const UserData& store = *desktop_.app()->userData();
    const auto& active = store.activeApp();
    out_.report("store truest " + std::string(toString(store.truestStatus())) + " read " +
                std::string(toString(store.readStatus())) + " ax " + boolText(store.hasAXAccess()) +
                " active " + (active ? active->name() : "none"));
    for (const auto& entry : store.statusHistory()) {
        out_.report("history " + std::to_string(entry.id) + " " +
                    std::string(toString(entry.truest)) + " " + std::string(toString(entry.read)) +
                    " " + boolText(entry.hasAX));
    }
}

} // namespace hg::sim
