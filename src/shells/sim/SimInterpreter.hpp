#pragma once

#include "shells/sim/ScriptTokenizer.hpp"
#include "shells/sim/SimDesktop.hpp"
#include "shells/sim/SimOutput.hpp"

#include <istream>
#include <ostream>
#include <string_view>

namespace hg::sim {

// Runs a simulation script line by line on a SimDesktop: commands prepare
// and drive the desktop, launch and drive the application, and move the
// virtual clock. Every command but `wait` takes no virtual time.
class SimInterpreter {
public:
    explicit SimInterpreter(SimOutput& out) : out_(out), desktop_(out) {}

    // Runs one line. Throws ScriptError for a mistake in it; what the
    // application does is never one.
    void runLine(std::string_view text);

    // The application terminated (by `quit` or the menu's Quit): the script
    // is over.
    [[nodiscard]] bool finished() const { return desktop_.terminated(); }

    // Runs a whole script. Returns the exit status: 0 when it ran to its end
    // or to the application's termination, 2 after a script error, which is
    // written to `errors` as "sim: line N: MESSAGE".
    int run(std::istream& script, std::ostream& errors);

    [[nodiscard]] SimDesktop& desktop() { return desktop_; }

private:
    void dispatch(const ScriptLine& line);
    // Throws unless the application was launched.
    void requireApp(const ScriptLine& line) const;
    // Throws unless the line has exactly `count` words (`atLeast`: at least).
    static void requireWords(const ScriptLine& line, std::size_t count, bool atLeast = false);
    // A command aimed at something that is not there.
    void ignored(const ScriptLine& line);

    void launch(const ScriptLine& line);
    void quit(const ScriptLine& line);
    void wait(const ScriptLine& line);
    void trust(const ScriptLine& line);
    void defaults(const ScriptLine& line);
    void update(const ScriptLine& line);
    void login(const ScriptLine& line);
    void show(const ScriptLine& line);
    void showStore();
    // SimAppCommands.cpp
    void zoom(const ScriptLine& line);
    void tuple(const ScriptLine& line);
    void mic(const ScriptLine& line);
    // SimUserCommands.cpp
    void key(const ScriptLine& line);
    void flags(const ScriptLine& line);
    void tap(const ScriptLine& line);
    void menu(const ScriptLine& line);
    void window(const ScriptLine& line);
    void recorder(const ScriptLine& line);

    SimOutput& out_;
    SimDesktop desktop_;
};

} // namespace hg::sim
