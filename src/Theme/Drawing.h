#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;
class QWidget;

namespace velmorquit {

/// Fills a rectangle with round corners.
void fillRounded(QPainter& painter, const QRectF& area, double cornerRadius, const QBrush& brush);

/// A line one point wide along the inside of the edge.
void strokeInside(QPainter& painter, const QRectF& area, double cornerRadius, const QBrush& brush);

/// Has what is drawn from now on shrink towards the middle of `area`.
void scaleAround(QPainter& painter, const QRectF& area, double scale);

/// How the digits of a text are set.
enum class Figures {
    proportional,
    tabular ///< all as wide as the widest, so that a number doesn't move while it counts
};

/// Width of one line.
[[nodiscard]] double textWidth(const QFont& font, const QString& text,
                               Figures figures = Figures::proportional);

/// Draws one line that begins at the left edge of `area`, with its height in the middle.
void drawLine(QPainter& painter, const QRectF& area, const QString& text,
              Figures figures = Figures::proportional);

/// One line as it can be drawn where there is only so much room.
struct FittedLine {
    QFont font;
    QString text;
    double width = 0;
};

/// Makes the text fit into that width: smaller, but no smaller than `least` times its size, and
/// then with an ellipsis at its end.
[[nodiscard]] FittedLine fitLine(const QFont& font, const QString& text, double room, double least,
                                 Figures figures = Figures::proportional);

/// Whether the widget has the keyboard and the user works with it.
[[nodiscard]] bool showsFocus(const QWidget& widget);

/// The mark of the widget that has the keyboard.
void drawFocus(QPainter& painter, const QRectF& area, double cornerRadius);

} // namespace velmorquit
