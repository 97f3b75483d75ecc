// Every D-Bus failure the backend can meet ends as one AXError, and the Zoom
// adapter's accessibility layer prints that code's text.

#include "platform/linux/AtspiErrors.hpp"

#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeRunningApplications.hpp"

#include <QDBusError>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

namespace hg {
namespace {

using ::testing::ElementsAre;

// Elements that answer the read of one attribute, and every press, with one
// code; an element with one child otherwise.
class FailingAccessibility final : public Accessibility {
public:
    AXError code = ax::success;
    std::string failing;

    bool isProcessTrusted(bool) override { return true; }
    AXElementRef createApplication(ProcessId) override { return std::make_shared<AXElement>(); }
    AXCopyResult copyAttributeValue(const AXElementRef&, std::string_view attribute) override {
        if (attribute == failing) {
            return {code, std::monostate{}};
        }
        if (attribute == "AXChildren") {
            std::vector<AXElementRef> children;
            if (depth_++ == 0) {
                children.push_back(std::make_shared<AXElement>());
            }
            return {ax::success, children};
        }
        return {ax::success, std::string("Other")};
    }
    AXError performAction(const AXElementRef&, std::string_view) override { return code; }

private:
    int depth_ = 0;
};

// Written out independently of the backend's table: the D-Bus error names of
// each code, and what reading the menu bar, a title and pressing print.
struct Row {
    AXError code;
    std::vector<const char*> errorNames;
    const char* menuBarText;
    const char* titleText;
    const char* pressText;
};
const Row rows[] = {
    {-25211,
     {"hushgremlin.Atspi.BusUnreachable", "org.freedesktop.DBus.Error.Disconnected",
      "org.freedesktop.DBus.Error.NoServer", "org.freedesktop.DBus.Error.AccessDenied"},
     "DISABELD",
     "DISABELD",
     "DISABELD"},
    {-25202,
     {"org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.NameHasNoOwner",
      "org.freedesktop.DBus.Error.UnknownObject", "hushgremlin.Atspi.NoApplication"},
     "WTFMATE",
     "INVALID ELEMENT",
     "UNSUCCESS PRESSING"},
    {-25204,
     {"org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout",
      "org.freedesktop.DBus.Error.TimedOut", "hushgremlin.Atspi.Disabled",
      "hushgremlin.Atspi.ActionRefused"},
     "CANT COMplete",
     "CANT COMplete",
     "CANT COMplete"},
    {-25205,
     {"org.freedesktop.DBus.Error.UnknownInterface", "org.freedesktop.DBus.Error.UnknownMethod",
      "org.freedesktop.DBus.Error.UnknownProperty", "hushgremlin.Atspi.UnknownAttribute"},
     "ARTT UNSUB",
     "I BET THIS DOESNT HAPPEN ANYMORE",
     "ARTT UNSUB"},
    {-25206, {"hushgremlin.Atspi.NoAction"}, "UNSUPPORTED", "UNSUPPORTED", "UNSUPPORTED"},
    {-25212, {"hushgremlin.Atspi.NoMenuBar"}, "WTFMATE", "NO VALUE", "UNSUCCESS PRESSING"},
    // The last two names are not in the table: everything else is a plain failure.
    {-25200,
     {"hushgremlin.Atspi.BadReply", "org.freedesktop.DBus.Error.Failed",
      "org.freedesktop.DBus.Error.InvalidArgs", "com.example.Whatever"},
     " FAILRE",
     " FAILRE",
     " FAILRE"},
};

TEST(AtspiErrors, EveryFailureMapsToOneCodeThatPrintsItsText) {
    std::set<std::string> covered;
    for (const Row& row : rows) {
        for (const char* name : row.errorNames) {
            EXPECT_EQ(axErrorFor(QString::fromLatin1(name)), row.code) << name;
            covered.insert(name);
        }
        SCOPED_TRACE(row.code);
        FailingAccessibility ax;
        FakeRunningApplications apps;
        BufferLineSink out;
        AXAccess access(ax, apps, out);
        ax.code = row.code;

        ax.failing = "AXMenuBar";
        EXPECT_THROW((void)access.copyMenuBar(1), SwiftAXError);
        ax.failing = "AXChildren";
        EXPECT_THROW((void)access.findChild(std::make_shared<AXElement>(), "Meeting", false),
                     SwiftAXError);
        EXPECT_THAT(out.take(), ElementsAre(row.menuBarText, "NODICE", row.menuBarText));

        ax.failing = "AXTitle";
        try {
            (void)access.findChild(std::make_shared<AXElement>(), "Meeting", false);
            EXPECT_EQ(row.code, ax::attributeUnsupported)
                << "only a missing title is searched past";
        } catch (const SwiftAXError& e) {
            EXPECT_EQ(e.axErr, row.code);
        }
        EXPECT_THAT(out.take(), ElementsAre(row.titleText));

        try {
            access.press(std::make_shared<AXElement>());
            EXPECT_EQ(row.code, ax::actionUnsupported) << "only an unsupported action is pressed";
        } catch (const SwiftAXError& e) {
            EXPECT_EQ(e.axErr, row.code);
        }
        EXPECT_THAT(out.take(), ElementsAre(row.pressText));
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
