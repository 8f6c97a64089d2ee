#include "Theme/Buttons.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Help.h"
#include "Theme/Symbols.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace velmorquit {
namespace {

constexpr double symbolGap = 5;

} // namespace

PrimaryButton::PrimaryButton(const QString& text, std::optional<QColor> tint, QWidget* parent)
    : Aimed(text, parent), tint_(tint) {
    setFont(AppTheme::roundedFont(12));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PrimaryButton::setSymbol(const QString& name) {
    symbol_ = name;
    updateGeometry();
    update();
}

double PrimaryButton::symbolWidth() const {
    return symbol_.isEmpty() ? 0 : Symbols::boxSize(font().pixelSize()) + symbolGap;
}

QSize PrimaryButton::sizeHint() const {
    const double width = textWidth(font(), text()) + symbolWidth();
    return {static_cast<int>(std::ceil(width)) + 2 * 12,
            static_cast<int>(std::ceil(QFontMetricsF(font()).height())) + 2 * 6};
}

RoundedShape PrimaryButton::shape() const { return {QRectF(rect()), AppTheme::buttonCornerRadius}; }

Shadow PrimaryButton::shadow() const {
    const QColor colour = tint_.value_or(AppTheme::primaryPurple());
    return {AppTheme::withOpacity(colour, isEnabled() ? 0.35 : 0.1), 8, QPointF(0, 4)};
}

void PrimaryButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    const double radius = AppTheme::buttonCornerRadius;
    if (isDown()) {
        painter.setOpacity(0.85);
        scaleAround(painter, area, 0.98);
    } else if (!isEnabled()) {
        painter.setOpacity(AppTheme::disabledOpacity);
    }
    const bool isSolid = AppTheme::look().isHighContrast;
    fillRounded(painter, area, radius,
                tint_ ? AppTheme::fallingGradient(area, *tint_,
                                                  AppTheme::withOpacity(*tint_, isSolid ? 1 : 0.72))
                      : AppTheme::mainGradient(area));
    if (!isSolid)
        fillRounded(painter, area, radius, AppTheme::veil(0.08));
    strokeInside(painter, area, radius, AppTheme::line(0.35));

    painter.setPen(AppTheme::text());
    double x = (area.width() - textWidth(font(), text()) - symbolWidth()) / 2;
    if (!symbol_.isEmpty()) {
        const double box = Symbols::boxSize(font().pixelSize());
        Symbols::draw(painter, symbol_, {x, (area.height() - box) / 2, box, box}, AppTheme::text());
        x += symbolWidth();
    }
    drawLine(painter, {x, 0, area.width() - x, area.height()}, text());
    if (showsFocus(*this))
        drawFocus(painter, area, radius);
}

TextButton::TextButton(const QString& text, QWidget* parent) : Aimed(text, parent) {
    setFont(AppTheme::captionFont());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TextButton::sizeHint() const {
    return {static_cast<int>(std::ceil(textWidth(font(), text()))),
            static_cast<int>(std::ceil(QFontMetricsF(font()).height())) + 2};
}

void TextButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    if (isDown())
        painter.setOpacity(0.7);
    painter.setPen(AppTheme::text(underMouse() ? 1 : 0.9));
    QFont underlined = font();
    underlined.setUnderline(true);
    painter.setFont(underlined);
    drawLine(painter, area, text());
    if (showsFocus(*this))
        drawFocus(painter, area, AppTheme::buttonCornerRadius / 2.0);
}

SymbolButton::SymbolButton(const QString& symbol, double textSize, const QColor& colour, int margin,
                           const QString& help, QWidget* parent)
    : Aimed(parent), symbol_(symbol), colour_(colour),
      size_(Symbols::boxSize(textSize * AppTheme::look().textScale)), margin_(margin) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setHelp(*this, help);
    setAccessibleName(help);
}

QSize SymbolButton::sizeHint() const { return {size_ + 2 * margin_, size_ + 2 * margin_}; }

void SymbolButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    if (isDown())
        painter.setOpacity(0.7);
    const QRectF box = area.adjusted(margin_, margin_, -margin_, -margin_);
    Symbols::draw(painter, symbol_, box, underMouse() ? AppTheme::text() : colour_);
    if (showsFocus(*this))
        drawFocus(painter, area, area.height() / 2);
}

void drawChoice(QPainter& painter, const QRectF& area, bool isSelected) {
    constexpr double radius = AppTheme::buttonCornerRadius;
    const bool isHighContrast = AppTheme::look().isHighContrast;
    fillRounded(painter, area, radius,
                AppTheme::veil(isSelected ? (isHighContrast ? 0.4 : 0.28) : 0.07));
    strokeInside(painter, area, radius,
                 isSelected ? AppTheme::line(0.6) : AppTheme::veil(isHighContrast ? 0.45 : 0.15));
}

} // namespace velmorquit
