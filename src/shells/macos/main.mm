// The macOS program: the menu-bar item, its windows and the global shortcut,
// built by the same application delegate as the simulator and the Linux
// program.
#include "shells/macos/MacApplicationDelegate.hpp"

int main(int argc, char** argv) {
    return hg::mac::runApplication(argc, argv);
}
