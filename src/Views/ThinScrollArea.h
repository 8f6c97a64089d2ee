#pragma once

#include <QScrollArea>

namespace velmorquit {

/// Scrolls content that is too high, with a thin thumb in the right margin. It has no background of
/// its own.
class ThinScrollArea : public QScrollArea {
public:
    explicit ThinScrollArea(QWidget* parent = nullptr);

    /// Width that the thumb takes, in points.
    static constexpr int thumbMargin = 6;
};

} // namespace velmorquit
