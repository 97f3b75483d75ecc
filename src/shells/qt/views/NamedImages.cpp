#include "shells/qt/views/NamedImages.hpp"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace hg::views {

QString namedImagePath(std::string_view name) {
    const QString path =
        QStringLiteral(":/images/%1.svg")
            .arg(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    return QFile::exists(path) ? path : QString();
}

QIcon namedIcon(std::string_view name) {
    const QString path = namedImagePath(name);
    return path.isEmpty() ? QIcon() : QIcon(path);
}

QPixmap namedPixmap(std::string_view name, int width, int height, qreal devicePixelRatio) {
    const QString path = namedImagePath(name);
    if (path.isEmpty()) {
        return {};
    }
    QSvgRenderer renderer(path);
    if (!renderer.isValid()) {
        return {};
    }
    QSizeF size = renderer.defaultSize();
    size.scale(width, height, Qt::KeepAspectRatio);
    QPixmap pixmap((size * devicePixelRatio).toSize());
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter, QRectF(QPointF(0, 0), size));
    return pixmap;
}

} // namespace hg::views
