#pragma once

namespace hg::mac {

// Runs the macOS program: the shared NSApplication with the application
// delegate, which builds the platform and the application once launching has
// finished. Returns only if the event loop stops without terminating the
// process.
int runApplication(int argc, char** argv);

} // namespace hg::mac
