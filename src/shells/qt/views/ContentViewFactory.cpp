#include "shells/qt/views/ContentViewFactory.hpp"

#include "shells/qt/views/AboutView.hpp"
#include "shells/qt/views/DebugView.hpp"
#include "shells/qt/views/EnableAXView.hpp"
#include "shells/qt/views/EnableTupleCLIView.hpp"
#include "shells/qt/views/PrefsView.hpp"

#include <QWidget>

namespace hg::views {

namespace {

template <class... Ts> struct Overloaded : Ts... { using Ts::operator()...; };
template <class... Ts> Overloaded(Ts...) -> Overloaded<Ts...>;

} // namespace

QWidget* makeContentView(const WindowContent& content, QWidget* parent) {
    return std::visit(
        Overloaded{
            [parent](const AccessibilitySetupContent& c) -> QWidget* {
                return new EnableAXView(c.promptAction, parent);
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
                return new PrefsView(*c.prefs, *c.recorder, *c.launchAtLogin, c.showAbout,
                                     QString::fromStdString(c.notice), parent);
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
