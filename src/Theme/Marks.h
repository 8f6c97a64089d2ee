#pragma once

#include "Theme/Label.h"

namespace velmorquit {

/// A short text on a filled capsule or rounded rectangle.
class Badge : public Label {
public:
    struct Style {
        QFont font;
        int horizontalPadding = 0;
        int verticalPadding = 0;
        QColor ground;
        double cornerRadius = 0; ///< 0 for a capsule
    };

    Badge(const QString& text, const Style& style, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor ground_;
    double cornerRadius_;
};

/// For a success, in white on green.
[[nodiscard]] Badge::Style successBadge();

/// A warning on an orange background; it wraps.
class WarningText : public Badge {
public:
    explicit WarningText(const QString& text, QWidget* parent = nullptr);
};

} // namespace velmorquit
