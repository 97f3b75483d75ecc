#include "shells/sim/SimInterpreter.hpp"

#include <gtest/gtest.h>
#include <sstream>

namespace hg::sim {
namespace {

struct SimRun {
    int status;
    std::string out;
    std::string errors;
};

SimRun runScript(const std::string& script, bool trace) {
    std::ostringstream out;
    std::ostringstream errors;
    SimOutput output(out, trace);
    SimInterpreter interpreter(output);
    std::istringstream in(script);
    const int status = interpreter.run(in, errors);
    return SimRun{status, out.str(), errors.str()};
}

TEST(SimInterpreter, ScriptErrorsNameTheLineAndStopTheRun) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"wait 1\n", "sim: line 1: 'wait' before 'launch'\n"},
        {"# prepare\n\nlaunch\nlaunch\n", "sim: line 4: 'launch' twice\n"},
        {"zoom meeting muted\n", "sim: line 1: 'zoom meeting' while Zoom is not running\n"},
        {"launch\nwait -1\n", "sim: line 2: 'wait': bad number of seconds '-1'\n"},
        {"launch\nkey down 70000\n", "sim: line 2: 'key': bad key code '70000'\n"},
        {"launch\nmenu pick\n", "sim: line 2: 'menu': expected 2 arguments\n"},
        {"menu pick \"Quit\n", "sim: line 1: unterminated quote\n"},
        {"zoom fail press 0\n", "sim: line 1: 'zoom fail': bad AXError code '0'\n"},
        {"defaults set k float 1\n", "sim: line 1: 'defaults': unknown type 'float'\n"},
        {"tuple result\n", "sim: line 1: 'tuple result': expected an exit status\n"},
        {"trust maybe\n", "sim: line 1: 'trust': expected on or off, not 'maybe'\n"},
        {"show store\n", "sim: line 1: 'show' before 'launch'\n"},
    };
    for (const auto& [script, error] : cases) {
        const SimRun run = runScript(script + "zoom start\n", true);
        EXPECT_EQ(run.status, 2) << script;
        EXPECT_EQ(run.errors, error) << script;
    }
}

TEST(SimInterpreter, WithoutTraceOnlyTheAnswersToShowCommandsAreObservations) {
    const std::string script = "trust on\nlaunch\nwait 1\ndefaults show muteOnJoin_Zoom\n"
                               "defaults set k string two words \nshow store\nmenu close\n";
    const SimRun plain = runScript(script, false);
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.out, "setup binding...\nDo we have a monitor:  YES\nStarting watcher\n"
                         "GOT AX:  true\n= defaults muteOnJoin_Zoom absent\n"
                         "= store truest noMeeting read noMeeting ax true active none\n"
                         "= history 1 error noMeeting true\n= history 0 error error true\n");
    const SimRun traced = runScript(script + "defaults show k\n", true);
    EXPECT_NE(traced.out.find("= ignored: menu close\n"), std::string::npos);
    EXPECT_NE(traced.out.find("= defaults k string two words \n"), std::string::npos);
}

TEST(SimInterpreter, QuittingEndsTheScript) {
    const SimRun run = runScript("launch\nquit\nfrobnicate\n", false);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.out.find("Goodbye cruel world!\n"), std::string::npos);
}

TEST(SimInterpreter, TimersRestWhileTheMenuIsOpenAndMissedTicksAreNotMadeUp) {
    const SimRun run =
        runScript("trust on\nlaunch\nmenu open\nwait 5\nmenu close\nwait 1.5\n", false);
    std::size_t ticks = 0;
    for (std::size_t at = run.out.find("GOT AX"); at != std::string::npos;
         at = run.out.find("GOT AX", at + 1)) {
        ++ticks;
    }
    EXPECT_EQ(ticks, 1U);
}

} // namespace
} // namespace hg::sim
