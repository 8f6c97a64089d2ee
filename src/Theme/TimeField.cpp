#include "Theme/TimeField.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"

#include <QLineEdit>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace velmorquit {
namespace {

constexpr double arrowsWidth = 20;
constexpr int leftPadding = 8;
constexpr double cornerRadius = 7;
constexpr int leastHeight = 26;

} // namespace

TimeField::TimeField(QWidget* parent) : QTimeEdit(parent) {
    setFont(AppTheme::bodyFont());
    setFrame(false);
    setFocusPolicy(Qt::StrongFocus);
    setButtonSymbols(NoButtons);
    setWrapping(true);
    // The short form of the "C" locale has seconds.
    const QString format = locale().timeFormat(QLocale::ShortFormat);
    setDisplayFormat(format.contains(QLatin1String("ss")) ? QStringLiteral("HH:mm") : format);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Text, AppTheme::text());
    palette.setColor(QPalette::Highlight, AppTheme::veil(0.3));
    palette.setColor(QPalette::HighlightedText, AppTheme::text());
    setPalette(palette);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TimeField::sizeHint() const {
    // The width of the widest time that it may show.
    double widest = 0;
    for (const QTime& time : {QTime(23, 59), QTime(10, 40), QTime(20, 0), QTime(0, 44)})
        widest = std::max(widest, textWidth(font(), locale().toString(time, displayFormat())));
    const int height = static_cast<int>(std::ceil(QFontMetricsF(font()).height())) + 8;
    constexpr int cursor = 6;
    return {static_cast<int>(std::ceil(widest)) + leftPadding + cursor +
                static_cast<int>(arrowsWidth),
            std::max(leastHeight, height)};
}

QRectF TimeField::arrows() const {
    return {width() - arrowsWidth, 0, arrowsWidth, double(height())};
}

void TimeField::resizeEvent(QResizeEvent* event) {
    QTimeEdit::resizeEvent(event);
    lineEdit()->setGeometry(leftPadding, 0, width() - leftPadding - static_cast<int>(arrowsWidth),
                            height());
}

void TimeField::mousePressEvent(QMouseEvent* event) {
    if (!arrows().contains(event->position())) {
        QTimeEdit::mousePressEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    stepBy(event->position().y() < height() / 2.0 ? 1 : -1);
}

// Outside the field the same key means something else.
void TimeField::keyPressEvent(QKeyEvent* event) {
    QTimeEdit::keyPressEvent(event);
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return;
    event->accept();
    if (onReturn && !event->isAutoRepeat())
        onReturn();
}

// A user who merely scrolls past it doesn't mean it.
void TimeField::wheelEvent(QWheelEvent* event) {
    if (hasFocus())
        QTimeEdit::wheelEvent(event);
    else
        event->ignore();
}

void TimeField::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    fillRounded(painter, area, cornerRadius, AppTheme::withOpacity(Qt::black, 0.28));
    strokeInside(painter, area, cornerRadius, AppTheme::line(0.25));
    QPen pen(AppTheme::text(0.85), 1.4);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    const QPointF middle = arrows().center();
    for (const int direction : {-1, 1}) {
        const double base = middle.y() + direction * 3;
        const QPointF arrow[]{{middle.x() - 3.5, base},
                              {middle.x(), base + direction * 3.5},
                              {middle.x() + 3.5, base}};
        painter.drawPolyline(arrow, 3);
    }
    if (lineEdit()->hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        drawFocus(painter, area, cornerRadius);
}

} // namespace velmorquit
