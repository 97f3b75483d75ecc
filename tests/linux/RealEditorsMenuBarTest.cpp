// Real programs of the desktop, as installed (each case is skipped when its
// program is not): their menu bar is found, with its "File" menu, and what
// can be read of that menu's items.

#include "DesktopSession.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeRunningApplications.hpp"
#include "backends/linux/AtspiAccessibility.hpp"

#include <QStandardPaths>
#include <fstream>
#include <gtest/gtest.h>

namespace hg::test {
namespace {

struct Editor {
    const char* name;
    std::string executable;
    std::vector<std::string> argv;
    std::string processName; // of the process that shows the windows
    std::string fileMenu;    // its "File" menu's title
    // Whether the items of a closed menu can be read. LibreOffice 7.4 (GTK 3)
    // gives them no size and clears their visible state, as toolkits do for
    // the items they hide: only its submenus are seen, and they read empty.
    bool itemsReadable = true;
};

std::string processNameOf(ProcessId pid) {
    std::ifstream comm("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(comm, name);
    return name;
}

class RealEditors : public ::testing::TestWithParam<Editor> {};

TEST_P(RealEditors, TheMenuBarOnScreenIsReadWithItsItems) {
    const Editor& editor = GetParam();
    if (QStandardPaths::findExecutable(QString::fromStdString(editor.executable)).isEmpty()) {
        GTEST_SKIP() << editor.name << " is not installed";
    }
    if (DesktopSession::shared() == nullptr || !makeQtApplication()) {
        GTEST_SKIP() << "no private desktop: " << DesktopSession::skipReason();
    }
    AtspiAccessibility ax{AtspiAccessibility::Options{.alwaysOn = true}};
    // The desktop's accessibility switch on, as the set-up window does: GTK
    // programs register only then. It lives in the private desktop.
    ax.isProcessTrusted(true);
    ChildProcess program(editor.argv);
    std::optional<ProcessId> pid;
    BufferLineSink out;
    FakeRunningApplications apps;
    AXAccess access(ax, apps, out);
    AXElementRef file;
    // Found once the program has registered and built its menus.
    waitUntil(
        [&] {
            for (const ProcessId registered : ax.registeredProcessIds()) {
                if (processNameOf(registered) == editor.processName) {
                    pid = registered;
                }
            }
            if (!pid) {
                return false;
            }
            try {
                file = access.findChild(access.copyMenuBar(*pid), editor.fileMenu, false);
            } catch (const SwiftAXError&) {
                file = nullptr;
            }
            return file != nullptr;
        },
        120s);
    ASSERT_TRUE(pid) << editor.name << " did not register on the accessibility bus";
    ASSERT_NE(file, nullptr) << "no \"" << editor.fileMenu << "\" in the menu bar read";
    EXPECT_EQ(access.holdsItems(file), editor.itemsReadable);
    program.stop();
}

INSTANTIATE_TEST_SUITE_P(
    Installed, RealEditors,
    ::testing::Values(Editor{"Mousepad",
                             "mousepad",
                             {"env", "GDK_BACKEND=x11", "mousepad", "--disable-server"},
                             "mousepad",
                             "File"},
                      Editor{"KWrite",
                             "kwrite",
                             {"env", "QT_QPA_PLATFORM=xcb", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1",
                              "kwrite"},
                             "kwrite",
                             "File"},
                      // Its GTK 3 face is the one on the accessibility bus.
                      Editor{"LibreOffice",
                             "soffice",
                             {"env", "GDK_BACKEND=x11", "SAL_USE_VCLPLUGIN=gtk3", "soffice",
                              "--writer", "--norestore", "--nologo"},
                             "soffice.bin",
                             "File",
                             false}),
    [](const ::testing::TestParamInfo<Editor>& p) { return std::string(p.param.name); });

} // namespace
} // namespace hg::test
