#include "Theme/Label.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace velmorquit {

Label::Label(const QFont& font, const QColor& colour, QWidget* parent) : QLabel(parent) {
    setFont(font);
    setTextFormat(Qt::PlainText);
    setColour(colour);
}

void Label::setColour(const QColor& colour) {
    if (palette().color(QPalette::WindowText) == colour)
        return;
    QPalette palette = this->palette();
    palette.setColor(QPalette::WindowText, colour);
    setPalette(palette);
}

void Label::setFigures(Figures figures) {
    figures_ = figures;
    updateGeometry();
}

QSize Label::sizeHint() const {
    if (wordWrap())
        return QLabel::sizeHint();
    const QMargins margins = contentsMargins();
    const double width = std::ceil(textWidth(font(), text(), figures_));
    const double height = std::ceil(QFontMetricsF(font()).height());
    return QSizeF(width, height).toSize().grownBy(margins);
}

QSize Label::minimumSizeHint() const {
    return wordWrap() ? QSize(0, 0) : QSize(0, sizeHint().height());
}

int Label::heightForWidth(int width) const {
    if (!wordWrap())
        return -1;
    const QMargins margins = contentsMargins();
    const int inner = width - margins.left() - margins.right();
    const QRect text = QFontMetrics(font()).boundingRect(
        QRect(0, 0, std::max(1, inner), QWIDGETSIZE_MAX), Qt::TextWordWrap, this->text());
    return text.height() + margins.top() + margins.bottom();
}

void Label::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QRectF area = contentsRect();
    if (wordWrap()) {
        painter.drawText(area,
                         static_cast<int>(alignment() & Qt::AlignHorizontal_Mask) | Qt::AlignTop |
                             Qt::TextWordWrap,
                         text());
        return;
    }
    const FittedLine line = fitLine(font(), text(), area.width(), 1, figures_);
    painter.setFont(line.font);
    const double free = std::max(0.0, area.width() - line.width);
    double x = area.left();
    if (alignment() & Qt::AlignRight)
        x += free;
    else if (alignment() & Qt::AlignHCenter)
        x += free / 2;
    drawLine(painter, {x, area.top(), area.width(), area.height()}, line.text, figures_);
}

} // namespace velmorquit
