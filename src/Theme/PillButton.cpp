#include "Theme/PillButton.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Spring.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace velmorquit {
namespace {

constexpr int horizontalPadding = 10;
constexpr int verticalPadding = 7;
constexpr double pressedScale = 0.95;
constexpr double leastText = 0.8;
constexpr Spring spring{0.25, 0.7};

} // namespace

PillButton::PillButton(const QString& text, const QColor& fill, QWidget* parent)
    : Aimed(text, parent), fill_(fill) {
    setFont(AppTheme::roundedFont(13));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QPushButton::pressed, this, [this] { springTo(pressedScale); });
    connect(this, &QPushButton::released, this, [this] { springTo(1); });
}

void PillButton::springTo(double scale) {
    animation_.stop();
    animation_.disconnect(this);
    if (AppTheme::look().isMotionReduced) {
        scale_ = scale;
        update();
        return;
    }
    const double settling = spring.settlingTime();
    animation_.setDuration(static_cast<int>(settling * 1000));
    animation_.setStartValue(0.0);
    animation_.setEndValue(settling);
    connect(&animation_, &QVariantAnimation::valueChanged, this,
            [this, from = scale_, scale](const QVariant& seconds) {
                scale_ = from + (scale - from) * spring.at(seconds.toDouble());
                update();
            });
    animation_.start();
}

QSize PillButton::sizeHint() const {
    return {static_cast<int>(std::ceil(textWidth(font(), text()))) + 2 * horizontalPadding,
            static_cast<int>(std::ceil(QFontMetricsF(font()).height())) + 2 * verticalPadding};
}

QSize PillButton::minimumSizeHint() const { return {2 * horizontalPadding, sizeHint().height()}; }

void PillButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    scaleAround(painter, area, scale_);
    fillRounded(painter, area, area.height() / 2, fill_);
    if (AppTheme::look().isHighContrast)
        strokeInside(painter, area, area.height() / 2, AppTheme::line(1));
    const double room = area.width() - 2 * horizontalPadding;
    const FittedLine title = fitLine(font(), text(), room, leastText);
    painter.setFont(title.font);
    painter.setPen(AppTheme::text());
    drawLine(painter, {(area.width() - title.width) / 2, 0, room, area.height()}, title.text);
    if (showsFocus(*this))
        drawFocus(painter, area, area.height() / 2);
}

} // namespace velmorquit
