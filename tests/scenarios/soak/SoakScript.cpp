#include "soak/SoakScript.hpp"

#include <iomanip>
#include <sstream>

namespace hg::sim {

namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

} // namespace

std::vector<std::string> SoakScript::opening() {
    std::vector<std::string> lines;
    lines.emplace_back(roll(4) == 0 ? "trust off" : "trust on");
    if (roll(2) == 0) {
        lines.emplace_back("zoom start");
    }
    if (roll(3) == 0) {
        lines.emplace_back("tuple start");
    }
    lines.emplace_back("launch");
    return lines;
}

std::string SoakScript::nextWait() {
    // Microseconds, written exactly.
    const int kind = roll(25);
    std::int64_t micros = 0;
    if (kind < 14) {
        micros = std::uniform_int_distribution<std::int64_t>(0, 400'000)(random_);
    } else if (kind < 24) {
        micros = std::uniform_int_distribution<std::int64_t>(400'000, 5'000'000)(random_);
    } else {
        micros = std::uniform_int_distribution<std::int64_t>(5'000'000, 120'000'000)(random_);
    }
    std::ostringstream text;
    text << "wait " << micros / 1'000'000 << '.' << std::setw(6) << std::setfill('0')
         << micros % 1'000'000;
    return text.str();
}

std::string SoakScript::nextCommand() {
    // An open menu is closed or used soon: it stops the timers.
    if (desktop_.statusItemState.isOpen() && roll(3) != 0) {
        return menuCommand();
    }
    const int kind = roll(100);
    if (kind < 20) {
        return zoomCommand();
    }
    if (kind < 30) {
        return tupleCommand();
    }
    if (kind < 35) {
        return micCommand();
    }
    if (kind < 70) {
        return keyCommand();
    }
    if (kind < 80) {
        return menuCommand();
    }
    if (kind < 90) {
        return windowCommand();
    }
    return systemCommand();
}

std::string SoakScript::zoomCommand() {
    const int kind = roll(20);
    if (!desktop_.zoom.isRunning() || kind == 0) {
        return "zoom start";
    }
    if (kind == 1) {
        return "zoom stop";
    }
    if (kind == 2) {
        return "zoom fail " + pick<std::string>({"menubar", "children", "role", "title", "press"}) +
               " " +
               pick<std::string>({"-25204", "-25202", "-25205", "-25206", "-25211", "-25200"});
    }
    if (kind < 5) {
        return "zoom heal";
    }
    if (kind == 5) {
        return pick<std::string>({"zoom title Meeting meeting", "zoom title meeting Meeting",
                                  "zoom title \"Mute Audio\" \"mute audio\""});
    }
    return "zoom meeting " +
           pick<std::string>({"off", "muted", "unmuted", "muted", "unmuted", "both", "neither"});
}

std::string SoakScript::tupleCommand() {
    const int kind = roll(20);
    if (kind < 3) {
        return pick<std::string>({"tuple start", "tuple stop"});
    }
    if (kind < 5) {
        return "tuple cli " + pick<std::string>({"installed", "installed", "missing", "broken"});
    }
    if (kind == 5) {
        return pick<std::string>({"tuple result 1 boom", "tuple result 0 warning", "tuple result 0",
                                  "tuple result 0", "tuple result 0"});
    }
    if (kind == 6) {
        return pick<std::string>({R"(tuple state {"in_call": "yes"})", "tuple state not json",
                                  R"(tuple state {"in_call": true, "call": {}})"});
    }
    return "tuple call " + pick<std::string>({"off", "muted", "unmuted"});
}

std::string SoakScript::micCommand() {
    if (roll(4) == 0) {
        return "defaults set muteMicrophoneInOtherApps bool " +
               pick<std::string>({"true", "true", "false"});
    }
    return "mic " + pick<std::string>({"record", "record", "mute", "mute", "fail"}) + " " +
           pick<std::string>({"on", "off", "off"});
}

std::string SoakScript::keyCommand() {
    const int kind = roll(20);
    if (kind < 12) {
        // The default shortcut, fn alone; its release with and without other
        // modifiers held.
        return pick<std::string>({"flags 63 0x800000", "flags 63 0", "flags 63 0x800000",
                                  "flags 63 0", "flags 59 0x40000", "flags 59 0",
                                  "flags 63 0x840000"});
    }
    if (kind < 18) {
        const std::string code = pick<std::string>({"0", "40", "49", "53", "96", "57", "105"});
        const std::string flags = pick<std::string>({"", " 0x100000", " 0x120000", " 0x40000"});
        return "key " + pick<std::string>({"down", "up", "repeat"}) + " " + code + flags;
    }
    if (kind < 19) {
        return roll(2) == 0 ? "recorder click" : "defaults remove mute_hotkey_v2";
    }
    return pick<std::string>({"tap timeout", "tap userinput"});
}

std::string SoakScript::menuCommand() {
    if (!desktop_.statusItemState.isOpen()) {
        return roll(4) == 0 ? "menu open option" : "menu open";
    }
    if (roll(4) == 0) {
        return "menu close";
    }
    // Quit ends the run; it is left to the end of the soak.
    std::vector<std::string> rows;
    for (const auto& row : desktop_.statusItemState.menu().rows) {
        if (row.kind == MenuRow::Kind::item && row.title != "Quit") {
            rows.push_back(row.title);
        }
    }
    if (rows.empty()) {
        return "menu close";
    }
    return "menu pick " + quoted(pick(rows));
}

std::string SoakScript::windowCommand() {
    const std::string prefs = quoted("Hush Gremlin Preferences");
    switch (roll(8)) {
    case 0:
        return "window press debug " + pick<std::string>({"Press", quoted("Toggle Mute")});
    case 1:
        return "window press " + prefs + " " +
               pick<std::string>({quoted("Check For Updates..."), "About..."});
    case 2:
        return "window toggle " + prefs + " " +
               pick<std::string>({"Zoom", "Tuple", quoted("Start Hush Gremlin on login")}) + " " +
               pick<std::string>({"on", "off"});
    case 3:
        return "window press " + quoted("HushGremlin Accessibility") + " " +
               quoted("Grant Acessibility Permission");
    default:
        return "window close " + pick<std::string>({prefs, "debug", quoted("About Hush Gremlin"),
                                                    quoted("HushGremlin Accessibility"),
                                                    quoted("HushGremlin - Tuple CLI")});
    }
}

std::string SoakScript::systemCommand() {
    switch (roll(10)) {
    case 0:
    case 1:
    case 2:
        return roll(4) == 0 ? "trust off" : "trust on";
    case 3:
        return "defaults set muteOnJoin_Zoom bool " + pick<std::string>({"true", "false"});
    case 4:
        return pick<std::string>({"defaults set mute_hotkey_v2 data {\"keyCode\":40",
                                  "defaults set mute_hotkey_v2 string fn",
                                  "defaults remove mute_hotkey_v2"});
    case 5:
        return "update found";
    case 6:
        return pick<std::string>({"login fail on", "login fail off", "login external approval"});
    default:
        return "show store";
    }
}

} // namespace hg::sim
