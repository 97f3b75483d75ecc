// hushgremlin-soak [--minutes N] [--seed S] [--print-script]: runs a random
// simulator script of N virtual minutes (default a day) and checks the
// application's invariants after every step. Exit status 1 on the first broken
// invariant, with the script that led there.
#include "shells/sim/SimInterpreter.hpp"
#include "soak/SoakChecks.hpp"
#include "soak/SoakScript.hpp"

#include <chrono>
#include <iostream>
#include <sstream>
#include <string>

namespace {

struct Options {
    double minutes = 24 * 60;
    std::uint64_t seed = 1;
    bool printScript = false;
};

bool parse(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--print-script") {
            options.printScript = true;
        } else if (arg == "--minutes" && i + 1 < argc) {
            options.minutes = std::stod(argv[++i]);
        } else if (arg == "--seed" && i + 1 < argc) {
            options.seed = std::stoull(argv[++i]);
        } else {
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        std::cerr << "usage: hushgremlin-soak [--minutes N] [--seed S] [--print-script]\n";
        return 2;
    }
    // Nobody reads the application's lines; the checks look at its state.
    std::ostringstream sink;
    hg::sim::SimOutput out(sink, true);
    hg::sim::SimInterpreter interpreter(out);
    hg::sim::SimDesktop& desktop = interpreter.desktop();
    hg::sim::SoakChecks checks(desktop);
    hg::sim::SoakScript script(desktop, options.seed);

    std::vector<std::string> lines;
    auto step = [&](const std::string& line) {
        lines.push_back(line);
        if (options.printScript) {
            std::cout << line << '\n';
        }
        interpreter.runLine(line);
        // Keep the discarded output from growing over a long run.
        sink.str({});
        const auto problems = checks.check();
        if (problems.empty()) {
            return true;
        }
        std::cerr << "soak (seed " << options.seed << "): after line " << lines.size() << " at "
                  << desktop.clock.elapsedSeconds() << " virtual seconds:\n";
        for (const auto& problem : problems) {
            std::cerr << "  " << problem << '\n';
        }
        std::cerr << "the script so far (rerun with --print-script to see it all), last lines:\n";
        for (std::size_t i = lines.size() > 30 ? lines.size() - 30 : 0; i < lines.size(); ++i) {
            std::cerr << "  " << lines[i] << '\n';
        }
        return false;
    };

    const auto started = std::chrono::steady_clock::now();
    try {
        for (const auto& line : script.opening()) {
            if (!step(line)) {
                return 1;
            }
        }
        const double end = options.minutes * 60;
        while (desktop.clock.elapsedSeconds() < end) {
            if (!step(script.nextCommand()) || !step(script.nextWait())) {
                return 1;
            }
        }
        if (!step("quit") || !desktop.terminated()) {
            return 1;
        }
    } catch (const hg::sim::ScriptError& error) {
        std::cerr << "soak (seed " << options.seed << "): line " << lines.size()
                  << " is a script error: " << error.what() << ": " << lines.back() << '\n';
        return 1;
    }
    const auto took = std::chrono::duration<double>(std::chrono::steady_clock::now() - started);
    std::cerr << "soak (seed " << options.seed << "): " << options.minutes << " virtual minutes, "
              << lines.size() << " lines, all invariants held (" << took.count() << " s)\n";
    return 0;
}
