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

/// Draws the shadow, but nothing inside the shape itself. It is computed once for each size.
void drawShadow(QPainter& painter, const RoundedShape& shape, const Shadow& shadow);

/// A widget whose shadow is drawn by the one below it: none can paint beyond its own edges.
class ShadowCaster {
public:
    ShadowCaster() = default;
    ShadowCaster(const ShadowCaster&) = delete;
    ShadowCaster& operator=(const ShadowCaster&) = delete;
    virtual ~ShadowCaster() = default;

    [[nodiscard]] virtual RoundedShape shape() const = 0;
    [[nodiscard]] virtual Shadow shadow() const = 0;
};

/// Draws the shadows of all visible casters on `ground`, also in plain containers on it, as far as
/// they reach into `dirty`; a caster is itself the ground for those on it.
void paintShadows(QPainter& painter, const QWidget& ground, const QRect& dirty);

/// Redraws the ground below `caster` where its shadow falls.
void updateShadow(QWidget& caster);

} // namespace velmorquit
