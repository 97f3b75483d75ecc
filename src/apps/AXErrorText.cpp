#include "apps/AXErrorText.hpp"

#include <array>

namespace hg {

namespace {

struct Row {
    AXError code;
    std::string_view menuBarChildren;
    std::string_view title;
    std::string_view press;
};

// The texts are the program's established log vocabulary, misspellings
// included; log readers grep for them, so they are kept exactly.
constexpr std::array<Row, 14> rows{{
    {ax::failure, " FAILRE", " FAILRE", " FAILRE"},
    {ax::illegalArgument, "WTFMATE", "ILLEgal ARg", "UNSUCCESS PRESSING"},
    {ax::invalidUIElement, "WTFMATE", "INVALID ELEMENT", "UNSUCCESS PRESSING"},
    {ax::invalidUIElementObserver, "WTFMATE", "Bad OZBSECER", "UNSUCCESS PRESSING"},
    {ax::cannotComplete, "CANT COMplete", "CANT COMplete", "CANT COMplete"},
    {ax::attributeUnsupported, "ARTT UNSUB", "I BET THIS DOESNT HAPPEN ANYMORE", "ARTT UNSUB"},
    {ax::actionUnsupported, "UNSUPPORTED", "UNSUPPORTED", "UNSUPPORTED"},
    {ax::notificationUnsupported, "WTFMATE", "BAD NOtificaiotn", "UNSUCCESS PRESSING"},
    {ax::notImplemented, "WTFMATE", "NOT IMPLENETD", "UNSUCCESS PRESSING"},
    {ax::notificationAlreadyRegistered, "WTFMATE", "BAD NOtificaiotn ALREADY",
     "UNSUCCESS PRESSING"},
    {ax::notificationNotRegistered, "WTFMATE", "BAD NOtificaiotn REGISTER", "UNSUCCESS PRESSING"},
    {ax::apiDisabled, "DISABELD", "DISABELD", "DISABELD"},
    {ax::noValue, "WTFMATE", "NO VALUE", "UNSUCCESS PRESSING"},
    {ax::parameterizedAttributeUnsupported, "WTFMATE", "BAD PARAM", "UNSUCCESS PRESSING"},
}};

constexpr Row otherCodes{0, "WTFMATE", "WTFMATE", "UNSUCCESS PRESSING"};

} // namespace

std::string_view axErrorText(AXErrorColumn column, AXError code) {
    const Row* row = &otherCodes;
    for (const auto& r : rows) {
        if (r.code == code) {
            row = &r;
            break;
        }
    }
    switch (column) {
    case AXErrorColumn::menuBarChildren:
        return row->menuBarChildren;
    case AXErrorColumn::title:
        return row->title;
    case AXErrorColumn::press:
        return row->press;
    }
    return row->menuBarChildren;
}

} // namespace hg
