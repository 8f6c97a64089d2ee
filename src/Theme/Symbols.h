#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>
#include <QString>

class QPainter;

/// The program's own symbols: one weight, on a grid of 24 units, drawn in whatever colour is
/// needed.
namespace velmorquit::Symbols {

/// The side of the square box, in points, in which a symbol is drawn that goes with text of that
/// size.
[[nodiscard]] int boxSize(double textSize);

/// Draws the symbol of that name as large as `box` (a square). An unknown name draws nothing.
void draw(QPainter& painter, const QString& name, const QRectF& box, const QColor& colour);

/// The symbol for a menu or a button of the toolkit's, sharp at every scale.
[[nodiscard]] QIcon icon(const QString& name, const QColor& colour);

/// In another colour where the toolkit shows what it stands for as selected.
[[nodiscard]] QIcon icon(const QString& name, const QColor& colour, const QColor& selected);

} // namespace velmorquit::Symbols
