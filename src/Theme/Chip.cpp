#include "Theme/Chip.h"

#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Drawing.h"
#include "Theme/Help.h"
#include "Theme/Symbols.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace velmorquit {
namespace {

constexpr double gap = 5;
constexpr int horizontalPadding = 4;
constexpr int verticalPadding = 7;

/// With larger text everywhere, it may still shrink to the same size.
double leastText() { return 0.75 / AppTheme::look().textScale; }

} // namespace

Chip::Chip(const QString& title, const QString& symbol, QWidget* parent)
    : Aimed(title, parent), symbol_(symbol) {
    setCheckable(true);
    setFont(AppTheme::systemFont(11, QFont::DemiBold));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void Chip::render(bool isSelected, bool isOn, const QString& help) {
    setChecked(isSelected);
    setEnabled(isOn);
    setHelp(*this, help);
}

QSize Chip::sizeHint() const {
    const double text = QFontMetricsF(font()).height();
    const double symbol = Symbols::boxSize(font().pixelSize());
    return {0, static_cast<int>(std::ceil(std::max(text, symbol))) + 2 * verticalPadding};
}

void Chip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(AppTheme::disabledOpacity);
    const QRectF area = rect();
    drawChoice(painter, area, isChecked());
    const double side = Symbols::boxSize(font().pixelSize());
    const double room = area.width() - 2 * horizontalPadding - side - gap;
    const FittedLine title = fitLine(font(), text(), room, leastText());
    const double x = (area.width() - side - gap - title.width) / 2;
    Symbols::draw(painter, symbol_, {x, (area.height() - side) / 2, side, side}, AppTheme::text());
    painter.setFont(title.font);
    painter.setPen(AppTheme::text());
    drawLine(painter, {x + side + gap, 0, room, area.height()}, title.text);
    if (showsFocus(*this))
        drawFocus(painter, area, AppTheme::buttonCornerRadius);
}

} // namespace velmorquit
