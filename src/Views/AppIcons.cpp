#include "Views/AppIcons.h"

#include <QIcon>
#include <QImage>
#include <QPainter>

#include <algorithm>

namespace velmorquit::AppIcons {
namespace {

QPixmap scaled(const QIcon& icon, int size, double scale) {
    QPixmap pixmap = icon.pixmap(QSize(size, size), scale);
    // A theme may only have smaller or larger ones.
    const int pixels = qRound(size * scale);
    if (!pixmap.isNull() && std::max(pixmap.width(), pixmap.height()) > pixels)
        pixmap = pixmap.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

QIcon fromImage(const Image& image) {
    QImage picture(image.width, image.height, QImage::Format_ARGB32);
    for (int y = 0; y < image.height; ++y) {
        const auto first = image.pixels.begin() + std::ptrdiff_t{y} * image.width;
        std::copy_n(first, image.width, reinterpret_cast<QRgb*>(picture.scanLine(y)));
    }
    return QPixmap::fromImage(std::move(picture));
}

} // namespace

QPixmap pixmap(const Icon& icon, int size, double scale) {
    QPixmap found;
    if (!icon.name.empty())
        found = scaled(QIcon::fromTheme(QString::fromStdString(icon.name)), size, scale);
    if (found.isNull() && !icon.file.empty())
        found = scaled(QIcon(QString::fromStdString(icon.file)), size, scale);
    if (found.isNull() && !icon.image.isEmpty())
        found = scaled(fromImage(icon.image), size, scale);
    if (found.isNull())
        found = scaled(QIcon::fromTheme(QStringLiteral("application-x-executable")), size, scale);
    if (found.isNull())
        found = scaled(QIcon(QStringLiteral(":/icons/application.svg")), size, scale);
    return found;
}

QPixmap own(int size, double scale) {
    return scaled(QIcon(QStringLiteral(":/icons/org.velmorquit.VelmorQuit.svg")), size, scale);
}

void draw(QPainter& painter, const QRectF& area, const QPixmap& pixmap) {
    const QSizeF size = pixmap.deviceIndependentSize();
    painter.drawPixmap(area.center() - QPointF(size.width() / 2, size.height() / 2), pixmap);
}

} // namespace velmorquit::AppIcons
