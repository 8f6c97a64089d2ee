#pragma once

#include <QColor>
#include <QPointF>
#include <QRectF>

class QPainter;
class QRect;
class QWidget;

namespace velmorquit {

/// A blurred copy of a shape below it.
struct Shadow {
    QColor colour;
    double radius = 0; ///< standard deviation of the blur
    QPointF offset;
};

/// A shape with round corners.
struct RoundedShape {
    QRectF area;
    double cornerRadius = 0;
};

/// Draws the shadow, and nothing within the shape itself. It is computed once for each size.
void drawShadow(QPainter& painter, const RoundedShape& shape, const Shadow& shadow);

/// What throws a shadow on the widget that it lies on: a widget can't paint beyond its own edges.
class ShadowCaster {
public:
    ShadowCaster() = default;
    ShadowCaster(const ShadowCaster&) = delete;
    ShadowCaster& operator=(const ShadowCaster&) = delete;
    virtual ~ShadowCaster() = default;

    [[nodiscard]] virtual RoundedShape shape() const = 0;
    [[nodiscard]] virtual Shadow shadow() const = 0;
};

/// Draws the shadows of all visible casters that lie on `ground`, also of those in plain containers
/// on it, as far as they reach into `dirty`; a caster is itself the ground of what lies on it.
void paintShadows(QPainter& painter, const QWidget& ground, const QRect& dirty);

/// Has the ground below `caster` drawn anew where its shadow falls.
void updateShadow(QWidget& caster);

} // namespace velmorquit
