#include "Sheet.h"

#include <QFont>
#include <QPainter>

#include <algorithm>

namespace velmorquit {
namespace {

/// Width of a row, in points; a wider picture gets a row of its own.
constexpr int mostWidth = 2400;
/// Of a name, which reaches into the empty margin of its picture.
constexpr int nameHeight = 8;
constexpr int nameRise = 26;

} // namespace

void Sheet::add(const QString& name, const QImage& picture) {
    entries_.push_back({name, picture, {}});
}

QSize Sheet::layOut(std::vector<Entry>& entries) const {
    QPoint next;
    QSize whole;
    int rowHeight = 0;
    for (Entry& entry : entries) {
        const QSize size = entry.picture.deviceIndependentSize().toSize();
        if (next.x() > 0 && next.x() + size.width() > mostWidth) {
            next = {0, next.y() + rowHeight};
            rowHeight = 0;
        }
        entry.place = next;
        next.rx() += size.width();
        rowHeight = std::max(rowHeight, size.height() + nameHeight);
        whole = whole.expandedTo({next.x(), next.y() + rowHeight});
    }
    return whole;
}

QImage Sheet::drawn() const {
    std::vector<Entry> entries = entries_;
    QImage image(layOut(entries) * scale_, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale_);
    image.fill(QColor(28, 31, 38));
    QPainter painter(&image);
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(13);
    painter.setFont(font);
    painter.setPen(QColor(190, 192, 200));
    for (const Entry& entry : entries) {
        painter.drawImage(entry.place, entry.picture);
        const QSizeF size = entry.picture.deviceIndependentSize();
        painter.drawText(
            QRectF(entry.place.x(), entry.place.y() + size.height() - nameRise, size.width(), 20),
            Qt::AlignHCenter | Qt::AlignTop, entry.name);
    }
    return image;
}

} // namespace velmorquit
