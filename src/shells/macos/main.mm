// The macOS program: the menu-bar item, its windows and the global shortcut,
// built by the same application delegate as the simulator and the Linux
// program.
#include "shells/macos/MacApplicationDelegate.hpp"
#include "shells/macos/MacScriptingClient.hpp"

int main(int argc, char** argv) {
    // `HushGremlin status` and its kin ask the running program and end.
    if (hg::mac::isScriptingCommand(argc, argv)) {
        return hg::mac::runScriptingClient(argc, argv);
    }
    return hg::mac::runApplication(argc, argv);
}
