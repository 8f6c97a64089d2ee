#pragma once

#include "Theme/Shadow.h"

#include <QColor>
#include <QWidget>

#include <optional>

namespace velmorquit {

/// A translucent card under the blocks of the panel.
class GlassCard : public QWidget, public ShadowCaster {
public:
    explicit GlassCard(double cornerRadius, std::optional<QColor> tint = std::nullopt,
                       QWidget* parent = nullptr);

    void setTint(const std::optional<QColor>& tint);

    [[nodiscard]] RoundedShape shape() const override;
    [[nodiscard]] Shadow shadow() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double cornerRadius_;
    std::optional<QColor> tint_;
};

} // namespace velmorquit
