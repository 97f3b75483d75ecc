// hushgremlin-sim [--trace] [SCRIPT]: runs the application on a simulated
// desktop and a virtual clock, driven by a script (standard input when SCRIPT
// is absent or "-").
#include "shells/sim/SimInterpreter.hpp"

#include <fstream>
#include <iostream>
#include <string_view>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    bool trace = false;
    const char* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--trace") {
            trace = true;
        } else if (path == nullptr && (arg == "-" || !arg.starts_with("-"))) {
            path = argv[i];
        } else {
            std::cerr << "usage: hushgremlin-sim [--trace] [SCRIPT]\n";
            return 2;
        }
    }
    std::ifstream file;
    std::istream* script = &std::cin;
    if (path != nullptr && std::string_view(path) != "-") {
        file.open(path);
        if (!file) {
            std::cerr << "sim: cannot read " << path << '\n';
            return 2;
        }
        script = &file;
    }
    hg::sim::SimOutput out(std::cout, trace);
    hg::sim::SimInterpreter interpreter(out);
    return interpreter.run(*script, std::cerr);
}
