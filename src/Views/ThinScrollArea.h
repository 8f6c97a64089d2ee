#pragma once

#include <QScrollArea>

namespace velmorquit {

/// Scrolls what is too high for it, with a thin thumb in the margin at its right. It has no ground
/// of its own.
class ThinScrollArea : public QScrollArea {
public:
    explicit ThinScrollArea(QWidget* parent = nullptr);

    /// Width that the thumb takes, in points.
    static constexpr int thumbMargin = 6;
};

} // namespace velmorquit
