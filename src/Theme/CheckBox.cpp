#include "Theme/CheckBox.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Symbols.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace velmorquit {
namespace {

constexpr double side = 16;
constexpr double gap = 7;
constexpr double cornerRadius = 4;
constexpr double leastText = 0.8;

} // namespace

CheckBox::CheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent) {
    setFont(AppTheme::calloutFont());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize CheckBox::sizeHint() const {
    const double height = std::max(side, QFontMetricsF(font()).height());
    return {static_cast<int>(std::ceil(side + gap + textWidth(font(), text()))) + 1,
            static_cast<int>(std::ceil(height)) + 2};
}

QSize CheckBox::minimumSizeHint() const { return {static_cast<int>(side), sizeHint().height()}; }

bool CheckBox::hitButton(const QPoint& position) const {
    return position.x() <= sizeHint().width() && rect().contains(position);
}

void CheckBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(AppTheme::disabledOpacity);
    const QRectF box(0, (height() - side) / 2, side, side);
    if (isChecked())
        fillRounded(painter, box, cornerRadius, AppTheme::successGreen());
    else
        fillRounded(painter, box, cornerRadius, AppTheme::veil(0.1));
    strokeInside(painter, box, cornerRadius, AppTheme::line(0.45));
    if (isChecked())
        Symbols::draw(painter, QStringLiteral("checkmark"), box.adjusted(2.5, 2.5, -2.5, -2.5),
                      AppTheme::text());
    const double room = width() - side - gap;
    const FittedLine title = fitLine(font(), text(), room, leastText);
    painter.setFont(title.font);
    painter.setPen(AppTheme::text());
    drawLine(painter, {side + gap, 0, room, double(height())}, title.text);
    if (showsFocus(*this))
        drawFocus(painter, rect(), cornerRadius);
}

} // namespace velmorquit
