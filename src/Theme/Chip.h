#pragma once

#include "Theme/Aimed.h"

#include <QPushButton>

namespace velmorquit {

/// A small button that shows whether something is chosen.
class Chip : public Aimed<QPushButton> {
public:
    Chip(const QString& title, const QString& symbol, QWidget* parent = nullptr);

    /// A chip that isn't on doesn't react and is drawn faintly.
    void render(bool isSelected, bool isOn, const QString& help);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
};

} // namespace velmorquit
