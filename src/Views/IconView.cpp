#include "Views/IconView.h"

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
    AppIcons::draw(painter, rect(), pixmap_);
}

} // namespace velmorquit
