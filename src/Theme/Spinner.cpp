#include "Theme/Spinner.h"

#include "Theme/AppTheme.h"

#include <QPainter>

namespace velmorquit {

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
    constexpr int side = 34;
    resize(side, side);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    animation_.setStartValue(0.0);
    animation_.setEndValue(360.0);
    animation_.setDuration(1000);
    animation_.setLoopCount(-1);
    connect(&animation_, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

void Spinner::showEvent(QShowEvent*) {
    if (!AppTheme::look().isMotionReduced)
        animation_.start();
}

void Spinner::hideEvent(QHideEvent*) { animation_.stop(); }

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(3, 3, -3, -3);
    QPen pen(AppTheme::veil(0.3), 3.2);
    pen.setCapStyle(Qt::RoundCap);
    painter.setPen(pen);
    painter.drawEllipse(ring);
    pen.setColor(AppTheme::text());
    painter.setPen(pen);
    // The painter's angles are in sixteenths of a degree, counter-clockwise.
    constexpr int degree = 16;
    painter.drawArc(ring, qRound((90 - animation_.currentValue().toDouble()) * degree),
                    -100 * degree);
}

} // namespace velmorquit
