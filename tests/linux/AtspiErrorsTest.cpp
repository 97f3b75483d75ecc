// Every D-Bus failure the backend can meet ends as one AXError, one the Zoom
// adapter's accessibility layer knows: reading a menu bar prints its text.

#include "backends/linux/AtspiErrors.hpp"

#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeRunningApplications.hpp"

#include <QDBusError>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

namespace hg {
namespace {

TEST(AtspiErrors, EveryFailureMapsToOneCodeThatPrintsItsText) {
    // Written out independently of the backend's table.
    const struct {
        const char* errorName;
        AXError code;
        const char* text;
    } rows[] = {
        {"hushgremlin.Atspi.BusUnreachable", -25211, "DISABELD"},
        {"org.freedesktop.DBus.Error.Disconnected", -25211, "DISABELD"},
        {"org.freedesktop.DBus.Error.NoServer", -25211, "DISABELD"},
        {"org.freedesktop.DBus.Error.AccessDenied", -25211, "DISABELD"},
        {"org.freedesktop.DBus.Error.ServiceUnknown", -25202, "WTFMATE"},
        {"org.freedesktop.DBus.Error.NameHasNoOwner", -25202, "WTFMATE"},
        {"org.freedesktop.DBus.Error.UnknownObject", -25202, "WTFMATE"},
        {"hushgremlin.Atspi.NoApplication", -25202, "WTFMATE"},
        {"org.freedesktop.DBus.Error.NoReply", -25204, "CANT COMplete"},
        {"org.freedesktop.DBus.Error.Timeout", -25204, "CANT COMplete"},
        {"org.freedesktop.DBus.Error.TimedOut", -25204, "CANT COMplete"},
        {"hushgremlin.Atspi.Disabled", -25204, "CANT COMplete"},
        {"hushgremlin.Atspi.ActionRefused", -25204, "CANT COMplete"},
        {"org.freedesktop.DBus.Error.UnknownInterface", -25205, "ARTT UNSUB"},
        {"org.freedesktop.DBus.Error.UnknownMethod", -25205, "ARTT UNSUB"},
        {"org.freedesktop.DBus.Error.UnknownProperty", -25205, "ARTT UNSUB"},
        {"hushgremlin.Atspi.UnknownAttribute", -25205, "ARTT UNSUB"},
        {"hushgremlin.Atspi.NoAction", -25206, "UNSUPPORTED"},
        {"hushgremlin.Atspi.NoMenuBar", -25212, "WTFMATE"},
        {"hushgremlin.Atspi.BadReply", -25200, " FAILRE"},
        {"org.freedesktop.DBus.Error.Failed", -25200, " FAILRE"},
        // Not in the table: everything else is a plain failure.
        {"org.freedesktop.DBus.Error.InvalidArgs", -25200, " FAILRE"},
        {"com.example.Whatever", -25200, " FAILRE"},
    };
    std::set<std::string> covered;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.errorName);
        covered.insert(row.errorName);
        const AXError code = axErrorFor(QString::fromLatin1(row.errorName));
        EXPECT_EQ(code, row.code);
        FakeAccessibility ax;
        FakeRunningApplications apps;
        BufferLineSink out;
        ax.fail(AXOp::menubar, code);
        try {
            (void)AXAccess(ax, apps, out).copyMenuBar(1);
            ADD_FAILURE() << "no failure raised";
        } catch (const SwiftAXError& e) {
            EXPECT_EQ(e.axErr, code);
        }
        EXPECT_THAT(out.take(), ::testing::ElementsAre(row.text));
    }
    for (const auto& mapping : atspiErrorTable()) {
        EXPECT_TRUE(covered.contains(mapping.errorName)) << mapping.errorName << " is not tested";
    }
    EXPECT_EQ(axErrorFor(QDBusError()), ax::failure);
    EXPECT_EQ(axErrorFor(QDBusError(QDBusError::NoReply, QStringLiteral("late"))),
              ax::cannotComplete);
}

} // namespace
} // namespace hg
