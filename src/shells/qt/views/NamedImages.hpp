#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <string_view>

namespace hg::views {

// The program's image resources, by the names the rest of the program uses
// ("NoMeetingIcon", "AppIcon", ...), drawn as SVG under :/images/.

// The resource path of a name, or an empty text when there is no such image.
[[nodiscard]] QString namedImagePath(std::string_view name);

// The image as an icon that renders sharp at any size; a null icon when the
// name is unknown.
[[nodiscard]] QIcon namedIcon(std::string_view name);

// The image rendered to fit `width` x `height` with its aspect ratio kept, at
// the screen's device pixel ratio; a null pixmap when the name is unknown.
[[nodiscard]] QPixmap namedPixmap(std::string_view name, int width, int height,
                                  qreal devicePixelRatio = 1.0);

} // namespace hg::views
