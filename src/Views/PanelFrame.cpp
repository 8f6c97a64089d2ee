#include "Views/PanelFrame.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Views/AppList.h"
#include "Views/Layouts.h"
#include "Views/ThinScrollArea.h"

#include <QPainter>

#include <algorithm>

namespace velmorquit {

PanelFrame::PanelFrame(PanelView* panel, QWidget* parent)
    : QWidget(parent), panel_(panel), area_(new ThinScrollArea(this)) {
    area_->setWidget(panel);
    panel->setAutoFillBackground(false);
    setFixedWidth(PanelView::width);
}

void PanelFrame::fit(int mostHeight) {
    int needed = panel_->heightFor(AppList::mostHeight);
    if (needed > mostHeight)
        needed = panel_->heightFor(AppList::mostHeight - (needed - mostHeight));
    panel_->resize(PanelView::width, needed);
    const int height = std::min(needed, mostHeight);
    setFixedHeight(height);
    area_->setGeometry(0, 0, PanelView::width, height);
}

void PanelFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    constexpr double radius = AppTheme::windowCornerRadius;
    fillRounded(painter, area, radius, AppTheme::windowGround());
    fillRounded(painter, area, radius, AppTheme::windowBackgroundGradient(area));
    fillRounded(painter, area, radius, AppTheme::windowHaze());
    strokeInside(painter, area, radius, AppTheme::line(0.12));
}

} // namespace velmorquit
