#include "Theme/ProgressTrack.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace velmorquit {
namespace {
constexpr int thickness = 6;
constexpr double lightWidth = 0.3;
} // namespace

ProgressTrack::ProgressTrack(const QColor& colour, QWidget* parent)
    : QWidget(parent), colour_(colour) {
    setFixedHeight(thickness);
    wandering_.setStartValue(-lightWidth);
    wandering_.setEndValue(1.0);
    wandering_.setDuration(1400);
    wandering_.setLoopCount(-1);
    connect(&wandering_, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

void ProgressTrack::setFraction(std::optional<double> fraction) {
    fraction_ = fraction;
    animateIfNeeded();
    update();
}

void ProgressTrack::animateIfNeeded() {
    const bool isWandering = isVisible() && !fraction_ && !AppTheme::look().isMotionReduced;
    if (isWandering && wandering_.state() != QAbstractAnimation::Running)
        wandering_.start();
    else if (!isWandering)
        wandering_.stop();
}

void ProgressTrack::showEvent(QShowEvent*) { animateIfNeeded(); }

void ProgressTrack::hideEvent(QHideEvent*) { wandering_.stop(); }

void ProgressTrack::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF track = rect();
    const double radius = track.height() / 2;
    fillRounded(painter, track, radius, AppTheme::veil(0.15));
    QPainterPath outline;
    outline.addRoundedRect(track, radius, radius);
    painter.setClipPath(outline);
    QRectF fill = track;
    if (fraction_) {
        fill.setWidth(std::max(track.height(), track.width() * *fraction_));
    } else {
        fill.setWidth(track.width() * lightWidth);
        const double at = wandering_.state() == QAbstractAnimation::Running
                              ? wandering_.currentValue().toDouble()
                              : (1 - lightWidth) / 2;
        fill.moveLeft(track.width() * at);
    }
    fillRounded(painter, fill, radius, colour_);
}

} // namespace velmorquit
