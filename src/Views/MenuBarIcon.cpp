#include "Views/MenuBarIcon.h"

#include <QColor>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QString>

#include <algorithm>
#include <memory>
#include <utility>

namespace velmorquit::MenuBarIcon {

namespace {

constexpr double gridSide = 24;
/// One point on the grid, in the size of 18 points for which the strokes were designed.
constexpr double point = gridSide / 18;

const QRectF circle(1.4, 3.4, 19.2, 19.2);
const QRectF ring(19.9, 1.5, 3.4, 3.4);
const QPointF arcCentre(11.0, 13.8);
constexpr double arcRadius = 4.5;
const QLineF stem(11.0, 7.6, 11.0, 12.6);

/// Qt's angles are in sixteenths of a degree, counter-clockwise.
constexpr int arcStart = 50 * 16;
constexpr int arcSpan = -280 * 16;

class Engine : public QIconEngine {
public:
    Engine(const QColor& colour, QString name) : colour_(colour), name_(std::move(name)) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode, QIcon::State) override {
        const int side = std::min(area.width(), area.height());
        QRectF box(0, 0, side, side);
        box.moveCenter(QRectF(area).center());
        draw(*painter, box, colour_);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }

    // The usual sizes in panels, at single and double scale.
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (const int side : {16, 22, 24, 32, 44, 48, 64})
            sizes.append({side, side});
        return sizes;
    }

    QString iconName() override { return name_; }

    [[nodiscard]] QIconEngine* clone() const override {
        return std::make_unique<Engine>(*this).release();
    }

private:
    QColor colour_;
    QString name_;
};

} // namespace

QString themedName() { return QStringLiteral("org.velmorquit.VelmorQuit-symbolic"); }

void draw(QPainter& painter, const QRectF& box, const QColor& colour) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    painter.scale(box.width() / gridSide, box.height() / gridSide);
    painter.setBrush(Qt::NoBrush);
    const QPen outline(colour, 1.2 * point);
    const QPen power(colour, 2.0 * point, Qt::SolidLine, Qt::RoundCap);

    painter.setPen(outline);
    painter.drawEllipse(circle);
    painter.setPen(power);
    QRectF arc(0, 0, 2 * arcRadius, 2 * arcRadius);
    arc.moveCenter(arcCentre);
    painter.drawArc(arc, arcStart, arcSpan);
    painter.drawLine(stem);
    painter.setPen(outline);
    painter.drawEllipse(ring);
    painter.restore();
}

QIcon icon(const QColor& colour, const QString& name) {
    return QIcon(std::make_unique<Engine>(colour, name).release());
}

} // namespace velmorquit::MenuBarIcon
