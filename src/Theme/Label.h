#pragma once

#include "Theme/Drawing.h"

#include <QLabel>

namespace velmorquit {

/// A text in one font and colour. A single line ends with an ellipsis if there is no room; a
/// wrapping one takes as many lines as it needs.
class Label : public QLabel {
public:
    Label(const QFont& font, const QColor& colour, QWidget* parent = nullptr);

    void setColour(const QColor& colour);
    void setFigures(Figures figures);
    void wrap() { setWordWrap(true); }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Figures figures_ = Figures::proportional;
};

} // namespace velmorquit
