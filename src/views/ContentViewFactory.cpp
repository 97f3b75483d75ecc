#include "views/ContentViewFactory.hpp"

#include "views/AboutView.hpp"
#include "views/DebugView.hpp"
#include "views/EnableAXView.hpp"
#include "views/EnableTupleCLIView.hpp"
#include "views/PrefsView.hpp"

#include <QWidget>

namespace hg::views {

namespace {

#ifdef Q_OS_MACOS
constexpr bool linuxDesktop = false;
#else
constexpr bool linuxDesktop = true;
#endif

template <class... Ts> struct Overloaded : Ts... { using Ts::operator()...; };
template <class... Ts> Overloaded(Ts...) -> Overloaded<Ts...>;

} // namespace

QWidget* makeContentView(const WindowContent& content, QWidget* parent) {
    return std::visit(
        Overloaded{
            [parent](const AccessibilitySetupContent& c) -> QWidget* {
                return new EnableAXView(c.promptAction, linuxDesktop, parent);
            },
            [parent](const AppSetupContent& c) -> QWidget* {
                if (c.view.kind == SetupView::Kind::tupleCLI) {
                    return new EnableTupleCLIView(parent);
                }
                return new QWidget(parent);
            },
            [parent](const PreferencesContent& c) -> QWidget* {
                // Every host supplies the three objects; a content without
                // them is a programming error that shows an empty window.
                if (c.prefs == nullptr || c.recorder == nullptr || c.launchAtLogin == nullptr) {
                    return new QWidget(parent);
                }
                return new PrefsView(*c.prefs, *c.recorder, *c.launchAtLogin, c.showAbout, parent);
            },
            [parent](const AboutContent& c) -> QWidget* {
                return new AboutView(QString::fromStdString(c.version), parent);
            },
            [parent](const DebugContent& c) -> QWidget* {
                if (c.userData == nullptr) {
                    return new QWidget(parent);
                }
                return new DebugView(*c.userData, parent);
            },
        },
        content);
}

} // namespace hg::views
