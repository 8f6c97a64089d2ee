#include "Views/IconView.h"

#include "Theme/AppTheme.h"
#include "Theme/Shadow.h"
#include "Views/AppIcons.h"

#include <QPainter>

#include <utility>

namespace velmorquit {

IconView::IconView(std::shared_ptr<const Icon> icon, int size, QWidget* parent)
    : QWidget(parent), icon_(std::move(icon)) {
    setFixedSize(size, size);
}

IconView::IconView(int size, QWidget* parent) : IconView(nullptr, size, parent) {}

void IconView::paintEvent(QPaintEvent*) {
    const double scale = devicePixelRatioF();
    if (std::exchange(scale_, scale) != scale)
        pixmap_ = icon_ ? AppIcons::pixmap(*icon_, width(), scale) : AppIcons::own(width(), scale);
    QPainter painter(this);
    if (edge_ == Edge::shaded)
        drawShadow(painter, {QRectF(rect()).adjusted(2, 2, -2, -2), 5},
                   {AppTheme::withOpacity(Qt::black, 0.5), 1.5, QPointF(0, 0.5)});
    AppIcons::draw(painter, rect(), pixmap_);
}

} // namespace velmorquit
