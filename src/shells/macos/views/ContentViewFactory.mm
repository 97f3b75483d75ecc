#include "shells/macos/views/ContentViewFactory.hpp"

#include "shells/macos/views/AboutView.hpp"
#include "shells/macos/views/DebugView.hpp"
#include "shells/macos/views/EnableAXView.hpp"
#include "shells/macos/views/EnableTupleCLIView.hpp"
#include "shells/macos/views/PrefsView.hpp"

#import <AppKit/AppKit.h>
#include <variant>

namespace hg::mac {

namespace {

template <class... Ts> struct Overloaded : Ts... { using Ts::operator()...; };
template <class... Ts> Overloaded(Ts...) -> Overloaded<Ts...>;

void* emptyView() {
    return (__bridge_retained void*)[[NSView alloc] initWithFrame:NSZeroRect];
}

} // namespace

void* makeContentView(const WindowContent& content) {
    return std::visit(
        Overloaded{
            [](const AccessibilitySetupContent& c) {
                return makeEnableAXView(c.promptAction, c.globeKeyNote);
            },
            [](const AppSetupContent& c) {
                if (c.view.kind == SetupView::Kind::tupleCLI) {
                    return makeEnableTupleCLIView();
                }
                return emptyView();
            },
            [](const PreferencesContent& c) {
                // Every host supplies the three objects; a content without
                // them is a programming error that shows an empty window.
                if (c.prefs == nullptr || c.recorder == nullptr || c.launchAtLogin == nullptr) {
                    return emptyView();
                }
                return makePrefsView(*c.prefs, *c.recorder, *c.launchAtLogin, c.showAbout);
            },
            [](const AboutContent& c) { return makeAboutView(c.version); },
            [](const DebugContent& c) {
                if (c.userData == nullptr) {
                    return emptyView();
                }
                return makeDebugView(*c.userData);
            },
        },
        content);
}

} // namespace hg::mac
