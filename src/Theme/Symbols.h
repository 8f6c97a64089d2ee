#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>
#include <QString>

class QPainter;

/// The program's own symbols: one weight, on a grid of 24 units, drawn in any colour that is
/// needed.
namespace velmorquit::Symbols {

/// The side, in points, of the square box in which a symbol is drawn that fits text of
/// that size.
[[nodiscard]] int boxSize(double textSize);

/// Draws the symbol with that name to fill `box` (a square). Draws nothing for an unknown name.
void draw(QPainter& painter, const QString& name, const QRectF& box, const QColor& colour);

/// The symbol for a menu or button of the toolkit's, sharp at every scale.
[[nodiscard]] QIcon icon(const QString& name, const QColor& colour);

/// With another colour for selected items.
[[nodiscard]] QIcon icon(const QString& name, const QColor& colour, const QColor& selected);

} // namespace velmorquit::Symbols
