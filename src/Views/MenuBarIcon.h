#pragma once

#include <QIcon>
#include <QRectF>

class QColor;
class QPainter;
class QString;

namespace velmorquit {

/// The program's look in a panel: a power symbol in a circle, with a small ring above it, in
/// strokes of one colour.
namespace MenuBarIcon {

/// The name of the same drawing among the installed icons, for panels that paint such icons in the
/// colour of their text.
[[nodiscard]] QString themedName();

/// Draws it to fill `box`, a square; the strokes scale with it.
void draw(QPainter& painter, const QRectF& box, const QColor& colour);

/// Drawn separately for every size. Panels that take icons by name get `name`, unless that is
/// empty.
[[nodiscard]] QIcon icon(const QColor& colour, const QString& name);

} // namespace MenuBarIcon
} // namespace velmorquit
