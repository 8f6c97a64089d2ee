#pragma once

#include "Theme/Aimed.h"
#include "Theme/Shadow.h"

#include <QColor>
#include <QPushButton>

#include <optional>

namespace velmorquit {

/// A button with a gradient and a shadow in its colour.
class PrimaryButton : public Aimed<QPushButton>, public ShadowCaster {
public:
    /// Without a tint it has the main gradient and a purple shadow.
    explicit PrimaryButton(const QString& text, std::optional<QColor> tint = std::nullopt,
                           QWidget* parent = nullptr);

    /// A symbol before the text; an empty name for none.
    void setSymbol(const QString& name);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
    [[nodiscard]] RoundedShape shape() const override;
    [[nodiscard]] Shadow shadow() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] double symbolWidth() const;

    std::optional<QColor> tint_;
    QString symbol_;
};

/// A button that looks like an underlined word of the text around it.
class TextButton : public Aimed<QPushButton> {
public:
    explicit TextButton(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A button that shows only a symbol, such as the cross that dismisses a notice. Its accessible
/// name is its tool tip.
class SymbolButton : public Aimed<QPushButton> {
public:
    /// The symbol fits text of `textSize`; the button extends `margin` beyond it.
    SymbolButton(const QString& symbol, double textSize, const QColor& colour, int margin,
                 const QString& help, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
    QColor colour_;
    int size_;
    int margin_;
};

/// Draws one of several options, such as those for what follows a run; a selected one is filled
/// more strongly.
void drawChoice(QPainter& painter, const QRectF& area, bool isSelected);

} // namespace velmorquit
