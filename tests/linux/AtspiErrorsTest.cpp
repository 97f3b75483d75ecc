// Every D-Bus failure the backend can meet ends as one AXError, and the
// Zoom adapter's accessibility layer prints that code's text.

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

// An element that answers every read and press with one code.
class FailingAccessibility final : public Accessibility {
public:
    AXError code = ax::success;
    std::string failingAttribute;

    bool isProcessTrusted(bool) override { return true; }
    AXElementRef createApplication(ProcessId) override { return std::make_shared<AXElement>(); }
    AXCopyResult copyAttributeValue(const AXElementRef&, std::string_view attribute) override {
        if (attribute == failingAttribute) {
            return {code, std::monostate{}};
        }
        if (attribute == "AXChildren") {
            if (depth_++ > 0) {
                return {ax::success, std::vector<AXElementRef>{}};
            }
            return {ax::success, std::vector<AXElementRef>{std::make_shared<AXElement>()}};
        }
        return {ax::success, std::string("Other")};
    }
    AXError performAction(const AXElementRef&, std::string_view) override { return code; }

private:
    int depth_ = 0;
};

struct Row {
    const char* errorName;
    AXError code;
    const char* menuBarText; // copyMenuBar and the children read print this
    const char* titleText;
    const char* pressText;
};

// The expected codes and texts, written out independently of the table.
const Row rows[] = {
    {"hushgremlin.Atspi.BusUnreachable", -25211, "DISABELD", "DISABELD", "DISABELD"},
    {"org.freedesktop.DBus.Error.Disconnected", -25211, "DISABELD", "DISABELD", "DISABELD"},
    {"org.freedesktop.DBus.Error.NoServer", -25211, "DISABELD", "DISABELD", "DISABELD"},
    {"org.freedesktop.DBus.Error.AccessDenied", -25211, "DISABELD", "DISABELD", "DISABELD"},
    {"org.freedesktop.DBus.Error.ServiceUnknown", -25202, "WTFMATE", "INVALID ELEMENT",
     "UNSUCCESS PRESSING"},
    {"org.freedesktop.DBus.Error.NameHasNoOwner", -25202, "WTFMATE", "INVALID ELEMENT",
     "UNSUCCESS PRESSING"},
    {"org.freedesktop.DBus.Error.UnknownObject", -25202, "WTFMATE", "INVALID ELEMENT",
     "UNSUCCESS PRESSING"},
    {"hushgremlin.Atspi.NoApplication", -25202, "WTFMATE", "INVALID ELEMENT", "UNSUCCESS PRESSING"},
    {"org.freedesktop.DBus.Error.NoReply", -25204, "CANT COMplete", "CANT COMplete",
     "CANT COMplete"},
    {"org.freedesktop.DBus.Error.Timeout", -25204, "CANT COMplete", "CANT COMplete",
     "CANT COMplete"},
    {"org.freedesktop.DBus.Error.TimedOut", -25204, "CANT COMplete", "CANT COMplete",
     "CANT COMplete"},
    {"hushgremlin.Atspi.Disabled", -25204, "CANT COMplete", "CANT COMplete", "CANT COMplete"},
    {"hushgremlin.Atspi.ActionRefused", -25204, "CANT COMplete", "CANT COMplete", "CANT COMplete"},
    {"org.freedesktop.DBus.Error.UnknownInterface", -25205, "ARTT UNSUB",
     "I BET THIS DOESNT HAPPEN ANYMORE", "ARTT UNSUB"},
    {"org.freedesktop.DBus.Error.UnknownMethod", -25205, "ARTT UNSUB",
     "I BET THIS DOESNT HAPPEN ANYMORE", "ARTT UNSUB"},
    {"org.freedesktop.DBus.Error.UnknownProperty", -25205, "ARTT UNSUB",
     "I BET THIS DOESNT HAPPEN ANYMORE", "ARTT UNSUB"},
    {"hushgremlin.Atspi.UnknownAttribute", -25205, "ARTT UNSUB", "I BET THIS DOESNT HAPPEN ANYMORE",
     "ARTT UNSUB"},
    {"hushgremlin.Atspi.NoAction", -25206, "UNSUPPORTED", "UNSUPPORTED", "UNSUPPORTED"},
    {"hushgremlin.Atspi.NoMenuBar", -25212, "WTFMATE", "NO VALUE", "UNSUCCESS PRESSING"},
    {"hushgremlin.Atspi.BadReply", -25200, " FAILRE", " FAILRE", " FAILRE"},
    {"org.freedesktop.DBus.Error.Failed", -25200, " FAILRE", " FAILRE", " FAILRE"},
    // Not in the table: everything else is a plain failure.
    {"org.freedesktop.DBus.Error.InvalidArgs", -25200, " FAILRE", " FAILRE", " FAILRE"},
    {"com.example.Whatever", -25200, " FAILRE", " FAILRE", " FAILRE"},
};

TEST(AtspiErrors, EveryFailureMapsToOneCodeThatPrintsItsText) {
    std::set<std::string> covered;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.errorName);
        covered.insert(row.errorName);
        const AXError code = axErrorFor(QString::fromLatin1(row.errorName));
        EXPECT_EQ(code, row.code);

        FailingAccessibility ax;
        FakeRunningApplications apps;
        BufferLineSink out;
        AXAccess access(ax, apps, out);
        ax.code = code;

        ax.failingAttribute = "AXMenuBar";
        EXPECT_THROW((void)access.copyMenuBar(1), SwiftAXError);
        ax.failingAttribute = "AXChildren";
        EXPECT_THROW((void)access.findChild(std::make_shared<AXElement>(), "Meeting", false),
                     SwiftAXError);
        EXPECT_THAT(out.take(), ElementsAre(row.menuBarText, "NODICE", row.menuBarText));

        ax.failingAttribute = "AXTitle";
        try {
            (void)access.findChild(std::make_shared<AXElement>(), "Meeting", false);
            EXPECT_EQ(code, ax::attributeUnsupported) << "only a missing title is searched past";
        } catch (const SwiftAXError& e) {
            EXPECT_EQ(e.axErr, code);
        }
        EXPECT_THAT(out.take(), ElementsAre(row.titleText));

        try {
            access.press(std::make_shared<AXElement>());
            EXPECT_EQ(code, ax::actionUnsupported)
                << "only an unsupported action counts as pressed";
        } catch (const SwiftAXError& e) {
            EXPECT_EQ(e.axErr, code);
        }
        EXPECT_THAT(out.take(), ElementsAre(row.pressText));
    }
    for (const auto& mapping : atspiErrorTable()) {
        EXPECT_TRUE(covered.contains(mapping.errorName)) << mapping.errorName << " is not tested";
    }
}

TEST(AtspiErrors, AnEmptyErrorIsAFailure) {
    EXPECT_EQ(axErrorFor(QDBusError()), ax::failure);
    EXPECT_EQ(axErrorFor(QDBusError(QDBusError::NoReply, QStringLiteral("late"))),
              ax::cannotComplete);
    EXPECT_EQ(axErrorFor(QDBusError(QDBusError::ServiceUnknown, QStringLiteral("gone"))),
              ax::invalidUIElement);
}

} // namespace
} // namespace hg
