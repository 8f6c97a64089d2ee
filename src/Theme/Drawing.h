#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;
class QWidget;

namespace velmorquit {

/// Fills a rectangle with rounded corners.
void fillRounded(QPainter& painter, const QRectF& area, double cornerRadius, const QBrush& brush);

/// A line one point wide along the inside of the edge.
void strokeInside(QPainter& painter, const QRectF& area, double cornerRadius, const QBrush& brush);

/// Shrinks everything drawn from now on towards the centre of `area`.
void scaleAround(QPainter& painter, const QRectF& area, double scale);

/// How the digits of a text are spaced.
enum class Figures {
    proportional,
    tabular ///< all as wide as the widest, so that a counting number doesn't move
};

/// Width of one line.
[[nodiscard]] double textWidth(const QFont& font, const QString& text,
                               Figures figures = Figures::proportional);

/// Draws one line from the left edge of `area`, vertically centred.
void drawLine(QPainter& painter, const QRectF& area, const QString& text,
              Figures figures = Figures::proportional);

/// One line of text adjusted to limited space.
struct FittedLine {
    QFont font;
    QString text;
    double width = 0;
};

/// Makes the text fit into that width: first by shrinking it, to no less than `least` times its
/// size, then with an ellipsis at its end.
[[nodiscard]] FittedLine fitLine(const QFont& font, const QString& text, double room, double least,
                                 Figures figures = Figures::proportional);

/// Whether the widget has the keyboard focus and the user is working with it.
[[nodiscard]] bool showsFocus(const QWidget& widget);

/// The mark of the focused widget.
void drawFocus(QPainter& painter, const QRectF& area, double cornerRadius);

} // namespace velmorquit
