// The commands of the user at the keyboard, the menu and the windows.
#include "shells/sim/SimInterpreter.hpp"

#include <limits>
#include <string>

namespace hg::sim {

namespace {

std::uint16_t keyCode(const std::string& word, const std::string& command) {
    const auto code = parseInteger(word);
    if (!code || *code < 0 || *code > std::numeric_limits<std::uint16_t>::max()) {
        throw ScriptError("'" + command + "': bad key code '" + word + "'");
    }
    return static_cast<std::uint16_t>(*code);
}

std::uint64_t eventFlags(const std::string& word, const std::string& command) {
    const auto flags = parseUnsigned(word);
    if (!flags) {
        throw ScriptError("'" + command + "': bad flags '" + word + "'");
    }
    return *flags;
}

} // namespace

void SimInterpreter::key(const ScriptLine& line) {
    line.checkWords();
    if (line.size() != 3 && line.size() != 4) {
        throw ScriptError("'key': expected down, up or repeat, a key code and optional flags");
    }
    const std::string& verb = line.word(1);
    if (verb != "down" && verb != "up" && verb != "repeat") {
        throw ScriptError("'key': expected down, up or repeat, not '" + verb + "'");
    }
    const std::uint16_t code = keyCode(line.word(2), "key");
    const std::uint64_t flags = line.size() == 4 ? eventFlags(line.word(3), "key") : 0;
    requireApp(line);

    TapEvent event{verb == "up" ? tapevent::keyUp : tapevent::keyDown, code, flags,
                   verb == "repeat" ? 1 : 0};
    std::optional<LocalKeyEvent> local;
    if (verb != "up") { // the application's key monitors do not see key-up
        local = LocalKeyEvent{LocalKeyEvent::Type::keyDown, code, flags};
    }
    desktop_.keyEvent(event, local);
}

void SimInterpreter::flags(const ScriptLine& line) {
    requireWords(line, 3);
    const std::uint16_t code = keyCode(line.word(1), "flags");
    const std::uint64_t flags = eventFlags(line.word(2), "flags");
    requireApp(line);
    desktop_.keyEvent(TapEvent{tapevent::flagsChanged, code, flags, 0},
                      LocalKeyEvent{LocalKeyEvent::Type::flagsChanged, code, flags});
}

void SimInterpreter::tap(const ScriptLine& line) {
    requireWords(line, 2);
    const std::string& why = line.word(1);
    if (why != "timeout" && why != "userinput") {
        throw ScriptError("'tap': expected timeout or userinput, not '" + why + "'");
    }
    requireApp(line);
    if (!desktop_.eventTap.isInstalled()) {
        ignored(line);
        return;
    }
    const TapEvent event{
        why == "timeout" ? tapevent::disabledByTimeout : tapevent::disabledByUserInput, 0, 0, 0};
    desktop_.keyEvent(event, std::nullopt);
}

void SimInterpreter::menu(const ScriptLine& line) {
    requireWords(line, 2, true);
    const std::string& verb = line.word(1);
    const bool open = desktop_.statusItemState.isOpen();
    if (verb == "open") {
        line.checkWords();
        if (line.size() > 3 || (line.size() == 3 && line.word(2) != "option")) {
            throw ScriptError("'menu open': expected nothing or option");
        }
        requireApp(line);
        if (open) {
            ignored(line);
            return;
        }
        desktop_.openMenu(line.size() == 3);
    } else if (verb == "pick") {
        requireWords(line, 3);
        requireApp(line);
        if (!desktop_.pickMenu(line.word(2))) {
            ignored(line);
        }
    } else if (verb == "close") {
        requireWords(line, 2);
        requireApp(line);
        if (!open) {
            ignored(line);
            return;
        }
        desktop_.closeMenu();
    } else {
        throw ScriptError("'menu': unknown action '" + verb + "'");
    }
}

void SimInterpreter::window(const ScriptLine& line) {
    requireWords(line, 3, true);
    const std::string& verb = line.word(1);
    SimWindows& windows = desktop_.simWindows;
    bool done = false;
    if (verb == "press") {
        requireWords(line, 4);
        requireApp(line);
        done = windows.press(line.word(2), line.word(3));
    } else if (verb == "toggle") {
        requireWords(line, 5);
        const std::string& value = line.word(4);
        if (value != "on" && value != "off") {
            throw ScriptError("'window toggle': expected on or off, not '" + value + "'");
        }
        requireApp(line);
        done = windows.toggle(line.word(2), line.word(3), value == "on");
    } else if (verb == "close") {
        requireWords(line, 3);
        requireApp(line);
        done = windows.close(line.word(2));
    } else {
        throw ScriptError("'window': unknown action '" + verb + "'");
    }
    if (!done) {
        ignored(line);
    }
}

void SimInterpreter::recorder(const ScriptLine& line) {
    requireWords(line, 2);
    if (line.word(1) != "click") {
        throw ScriptError("'recorder': expected click, not '" + line.word(1) + "'");
    }
    requireApp(line);
    if (!desktop_.simWindows.clickRecorder()) {
        ignored(line);
    }
}

} // namespace hg::sim
