#include "Theme/Drawing.h"

#include "Theme/AppTheme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QWidget>

#include <algorithm>

namespace velmorquit {
namespace {

/// Calls `run` for each run of digits and of other characters, with whether they are digits.
template <class Run> void eachRun(const QString& text, Run run) {
    for (qsizetype start = 0; start < text.size();) {
        const bool isNumber = text[start].isDigit();
        qsizetype end = start;
        while (end < text.size() && text[end].isDigit() == isNumber)
            ++end;
        run(text.mid(start, end - start), isNumber);
        start = end;
    }
}

double digitWidth(const QFontMetricsF& metrics) {
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    return widest;
}

} // namespace

void fillRounded(QPainter& painter, const QRectF& area, double cornerRadius, const QBrush& brush) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(area, cornerRadius, cornerRadius);
}

void strokeInside(QPainter& painter, const QRectF& area, double cornerRadius, const QBrush& brush) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(brush, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5,
                            cornerRadius - 0.5);
}

void scaleAround(QPainter& painter, const QRectF& area, double scale) {
    painter.translate(area.center());
    painter.scale(scale, scale);
    painter.translate(-area.center());
}

double textWidth(const QFont& font, const QString& text, Figures figures) {
    const QFontMetricsF metrics(font);
    if (figures == Figures::proportional)
        return metrics.horizontalAdvance(text);
    double width = 0;
    const double digit = digitWidth(metrics);
    eachRun(text, [&](const QString& run, bool isNumber) {
        width +=
            isNumber ? digit * static_cast<double>(run.size()) : metrics.horizontalAdvance(run);
    });
    return width;
}

void drawLine(QPainter& painter, const QRectF& area, const QString& text, Figures figures) {
    const QFontMetricsF metrics(painter.font());
    const double baseline = area.top() + (area.height() - metrics.height()) / 2 + metrics.ascent();
    if (figures == Figures::proportional) {
        painter.drawText(QPointF(area.left(), baseline), text);
        return;
    }
    double x = area.left();
    const double digit = digitWidth(metrics);
    eachRun(text, [&](const QString& run, bool isNumber) {
        if (!isNumber) {
            painter.drawText(QPointF(x, baseline), run);
            x += metrics.horizontalAdvance(run);
            return;
        }
        for (const QChar character : run) {
            const double inset = (digit - metrics.horizontalAdvance(character)) / 2;
            painter.drawText(QPointF(x + inset, baseline), QString(character));
            x += digit;
        }
    });
}

FittedLine fitLine(const QFont& font, const QString& text, double room, double least,
                   Figures figures) {
    // Sums of widths have fractions of a pixel.
    constexpr double tolerance = 0.5;
    FittedLine line{font, text, textWidth(font, text, figures)};
    if (line.width <= room + tolerance)
        return line;
    const int smallest = qRound(font.pixelSize() * std::min(least, 1.0));
    const int wanted = static_cast<int>(font.pixelSize() * room / line.width);
    line.font.setPixelSize(std::max({1, smallest, wanted}));
    line.width = textWidth(line.font, text, figures);
    if (line.width > room + tolerance) {
        line.text = QFontMetricsF(line.font).elidedText(text, Qt::ElideRight, room);
        line.width = textWidth(line.font, line.text, figures);
    }
    return line;
}

bool showsFocus(const QWidget& widget) {
    return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void drawFocus(QPainter& painter, const QRectF& area, double cornerRadius) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(AppTheme::line(0.9), 2));
    painter.drawRoundedRect(area.adjusted(1, 1, -1, -1), cornerRadius - 1, cornerRadius - 1);
}

} // namespace velmorquit
