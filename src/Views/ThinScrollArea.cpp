#include "Views/ThinScrollArea.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"

#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace velmorquit {
namespace {

class Thumb : public QScrollBar {
public:
    explicit Thumb(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {
        setFocusPolicy(Qt::NoFocus);
    }

    // With an empty size it would never be shown.
    [[nodiscard]] QSize sizeHint() const override {
        return {ThinScrollArea::thumbMargin, ThinScrollArea::thumbMargin};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override {
        const int steps = maximum() - minimum();
        if (steps <= 0)
            return;
        constexpr double thickness = 3;
        constexpr double shortest = 24;
        const double share = double(pageStep()) / (steps + pageStep());
        const double length = std::max(shortest, height() * share);
        const double top = (height() - length) * (value() - minimum()) / steps;
        QPainter painter(this);
        fillRounded(painter, {(width() - thickness) / 2, top, thickness, length}, thickness / 2,
                    AppTheme::line(isSliderDown() ? 0.7 : 0.45));
    }
};

} // namespace

ThinScrollArea::ThinScrollArea(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new Thumb(this));
    viewport()->setAutoFillBackground(false);
    setAutoFillBackground(false);
}

} // namespace velmorquit
