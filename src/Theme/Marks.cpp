#include "Theme/Marks.h"

#include "Theme/AppTheme.h"

#include <QPainter>

#include <cmath>

namespace velmorquit {

Badge::Badge(const QString& text, const Style& style, QWidget* parent)
    : Label(style.font, AppTheme::text(), parent), ground_(style.ground),
      cornerRadius_(style.cornerRadius) {
    setContentsMargins(style.horizontalPadding, style.verticalPadding, style.horizontalPadding,
                       style.verticalPadding);
    setText(text);
}

void Badge::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        fillRounded(painter, rect(), cornerRadius_ > 0 ? cornerRadius_ : height() / 2.0, ground_);
    }
    Label::paintEvent(event);
}

Badge::Style successBadge() {
    return {AppTheme::calloutFont(QFont::Bold), 7, 2, AppTheme::successGreen()};
}

WarningText::WarningText(const QString& text, QWidget* parent)
    : Badge(text,
            {AppTheme::captionFont(QFont::DemiBold), 8, 4,
             AppTheme::withOpacity(AppTheme::warningOrange(), 0.22), 6},
            parent) {
    wrap();
    const QMargins margins = contentsMargins();
    setMaximumWidth(static_cast<int>(std::ceil(textWidth(font(), text))) + margins.left() +
                    margins.right() + 1);
}

} // namespace velmorquit
