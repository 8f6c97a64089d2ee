#pragma once

#include <QIcon>
#include <QRectF>

class QColor;
class QPainter;
class QString;

namespace velmorquit {

/// What the program looks like in a panel: a power symbol in a circle, with a small ring above it,
/// in strokes of one colour.
namespace MenuBarIcon {

/// The name of the same drawing among the installed icons, for panels that give such icons the
/// colour of their texts.
[[nodiscard]] QString themedName();

/// Draws it as large as `box`, a square; the strokes grow along.
void draw(QPainter& painter, const QRectF& box, const QColor& colour);

/// Drawn anew in every size. Panels that are told an icon by its name are told `name`, unless that
/// is empty.
[[nodiscard]] QIcon icon(const QColor& colour, const QString& name);

} // namespace MenuBarIcon
} // namespace velmorquit
