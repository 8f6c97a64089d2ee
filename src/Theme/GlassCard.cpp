#include "Theme/GlassCard.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"

#include <QPaintEvent>
#include <QPainter>

namespace velmorquit {

GlassCard::GlassCard(double cornerRadius, std::optional<QColor> tint, QWidget* parent)
    : QWidget(parent), cornerRadius_(cornerRadius), tint_(tint) {}

void GlassCard::setTint(const std::optional<QColor>& tint) {
    if (tint_ == tint)
        return;
    tint_ = tint;
    update();
}

RoundedShape GlassCard::shape() const { return {QRectF(rect()), cornerRadius_}; }

Shadow GlassCard::shadow() const {
    return {AppTheme::withOpacity(Qt::black, 0.12), 14, QPointF(0, 8)};
}

void GlassCard::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRectF area = rect();
    fillRounded(painter, area, cornerRadius_, AppTheme::cardHaze());
    if (!AppTheme::look().isHighContrast) {
        fillRounded(painter, area, cornerRadius_,
                    AppTheme::fallingGradient(area, AppTheme::veil(0.07), AppTheme::veil(0.035)));
        if (tint_)
            fillRounded(painter, area, cornerRadius_, AppTheme::withOpacity(*tint_, 0.12));
    }
    strokeInside(painter, area, cornerRadius_,
                 AppTheme::edgeGradient(area, AppTheme::line(0.55), AppTheme::line(0.05)));
    paintShadows(painter, *this, event->rect());
}

} // namespace velmorquit
