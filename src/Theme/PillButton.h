#pragma once

#include "Theme/Aimed.h"

#include <QColor>
#include <QPushButton>
#include <QVariantAnimation>

namespace velmorquit {

/// A capsule-shaped button that springs back when released.
class PillButton : public Aimed<QPushButton> {
public:
    PillButton(const QString& text, const QColor& fill, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void springTo(double scale);

    QColor fill_;
    double scale_ = 1;
    QVariantAnimation animation_;
};

} // namespace velmorquit
