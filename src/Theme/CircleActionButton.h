#pragma once

#include "Theme/Aimed.h"
#include "Theme/Shadow.h"
#include "Theme/Spinner.h"

#include <QColor>
#include <QPushButton>
#include <QVariantAnimation>

namespace velmorquit {

/// The large round button: a symbol, or a spinner while busy, above its caption.
class CircleActionButton : public Aimed<QPushButton>, public ShadowCaster {
public:
    /// Filled with the main gradient; `tint` is the colour of its shadow.
    CircleActionButton(int diameter, const QColor& tint, QWidget* parent = nullptr);

    void setSymbol(const QString& name);
    void setBusy(bool isBusy);

    [[nodiscard]] QSize sizeHint() const override { return {diameter_, diameter_}; }
    [[nodiscard]] RoundedShape shape() const override;
    [[nodiscard]] Shadow shadow() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;

private:
    void press(bool isDown);
    [[nodiscard]] double scale() const;
    [[nodiscard]] QStringList captionLines(QFont& font) const;

    int diameter_;
    QColor tint_;
    QString symbol_;
    double pressed_ = 0; ///< 0 at rest, 1 pressed
    QVariantAnimation animation_;
    Spinner spinner_;
};

} // namespace velmorquit
