#include "Theme/Shadow.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <list>
#include <vector>

namespace velmorquit {
namespace {

/// Three times the deviation: nothing is visible beyond that.
double reach(const Shadow& shadow) { return 3 * shadow.radius; }

void boxBlurLines(QImage& image, int radius) {
    const int width = image.width();
    const int window = 2 * radius + 1;
    std::vector<int> line(static_cast<std::size_t>(width));
    for (int y = 0; y < image.height(); ++y) {
        uchar* row = image.scanLine(y);
        int sum = 0;
        for (int x = -radius; x < width; ++x) {
            if (x + radius < width)
                sum += row[x + radius];
            if (x - radius - 1 >= 0)
                sum -= row[x - radius - 1];
            if (x >= 0)
                line[static_cast<std::size_t>(x)] = sum / window;
        }
        for (int x = 0; x < width; ++x)
            row[x] = static_cast<uchar>(line[static_cast<std::size_t>(x)]);
    }
}

/// Three box blurs approximate a Gaussian one of that deviation.
QImage blurred(QImage image, double deviation) {
    const double width = std::sqrt(12 * deviation * deviation / 3 + 1);
    const int radius = std::max(1, static_cast<int>(std::lround((width - 1) / 2)));
    for (int pass = 0; pass < 2; ++pass) {
        for (int times = 0; times < 3; ++times)
            boxBlurLines(image, radius);
        image = image.transformed(QTransform(0, 1, 1, 0, 0, 0));
    }
    return image;
}

struct Drawn {
    QSizeF size;
    double cornerRadius = 0;
    double radius = 0;
    QImage mask;
};

/// After a blur, a coarser picture holds all remaining detail.
double coarseness(double deviation) { return std::max(1.0, deviation / 4); }

QImage makeMask(const QSizeF& size, double cornerRadius, const Shadow& shadow) {
    const double scale = 1 / coarseness(shadow.radius);
    const double margin = reach(shadow);
    const QSizeF whole = (size + QSizeF(2 * margin, 2 * margin)) * scale;
    QImage mask(static_cast<int>(std::ceil(whole.width())),
                static_cast<int>(std::ceil(whole.height())), QImage::Format_Alpha8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF({margin, margin}, size), cornerRadius, cornerRadius);
    painter.end();
    return blurred(std::move(mask), shadow.radius * scale);
}

const QImage& maskFor(const QSizeF& size, double cornerRadius, const Shadow& shadow) {
    constexpr std::size_t most = 24;
    static std::list<Drawn> recent;
    const auto found = std::find_if(recent.begin(), recent.end(), [&](const Drawn& drawn) {
        return drawn.size == size && drawn.cornerRadius == cornerRadius &&
               drawn.radius == shadow.radius;
    });
    if (found != recent.end()) {
        recent.splice(recent.begin(), recent, found);
    } else {
        recent.push_front(
            {size, cornerRadius, shadow.radius, makeMask(size, cornerRadius, shadow)});
        if (recent.size() > most)
            recent.pop_back();
    }
    return recent.front().mask;
}

/// The area that a shadow of that shape can cover.
QRectF covered(const RoundedShape& shape, const Shadow& shadow) {
    const double margin = reach(shadow) + 1;
    return shape.area.adjusted(-margin, -margin, margin, margin).translated(shadow.offset);
}

void paintCasters(QPainter& painter, const QWidget& ground, const QWidget& branch,
                  const QRect& dirty) {
    for (const QObject* child : branch.children()) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        if (!widget || widget->isHidden() || widget->isWindow())
            continue;
        if (const auto* caster = dynamic_cast<const ShadowCaster*>(widget)) {
            RoundedShape shape = caster->shape();
            shape.area.translate(widget->mapTo(&ground, QPoint()));
            const Shadow shadow = caster->shadow();
            if (covered(shape, shadow).intersects(dirty))
                drawShadow(painter, shape, shadow);
        } else {
            paintCasters(painter, ground, *widget, dirty);
        }
    }
}

} // namespace

void drawShadow(QPainter& painter, const RoundedShape& shape, const Shadow& shadow) {
    if (shape.area.isEmpty() || shadow.radius <= 0)
        return;
    const QImage& mask = maskFor(shape.area.size(), shape.cornerRadius, shadow);
    QImage tinted(mask.size(), QImage::Format_ARGB32_Premultiplied);
    tinted.fill(shadow.colour);
    QPainter tint(&tinted);
    tint.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    tint.drawImage(0, 0, mask);
    tint.end();

    const double margin = reach(shadow);
    const double scale = coarseness(shadow.radius);
    const QRectF target(shape.area.topLeft() - QPointF(margin, margin) + shadow.offset,
                        QSizeF(mask.size()) * scale);
    QPainterPath around;
    around.setFillRule(Qt::OddEvenFill);
    around.addRect(target.united(shape.area));
    around.addRoundedRect(shape.area, shape.cornerRadius, shape.cornerRadius);
    painter.save();
    painter.setClipPath(around, Qt::IntersectClip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, tinted);
    painter.restore();
}

void paintShadows(QPainter& painter, const QWidget& ground, const QRect& dirty) {
    paintCasters(painter, ground, ground, dirty);
}

void updateShadow(QWidget& caster) {
    const auto* shadowed = dynamic_cast<const ShadowCaster*>(&caster);
    QWidget* ground = caster.parentWidget();
    if (!shadowed || !ground)
        return;
    constexpr int most = 64;
    while (ground->parentWidget() && !dynamic_cast<const ShadowCaster*>(ground) &&
           !ground->isWindow())
        ground = ground->parentWidget();
    const QRect place(caster.mapTo(ground, QPoint()), caster.size());
    ground->update(place.adjusted(-most, -most, most, most));
}

} // namespace velmorquit
