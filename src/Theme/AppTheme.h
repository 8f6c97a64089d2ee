#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QRectF>

/// Colours, gradients and fonts of everything that the program draws. Lengths are in points, the
/// toolkit's device-independent pixels.
namespace velmorquit::AppTheme {

/// The user's wishes for everything that is drawn.
struct Look {
    bool isHighContrast = false;  ///< opaque backgrounds, white text, strong lines
    bool isMotionReduced = false; ///< changes happen at once
    double textScale = 1;         ///< factor by which all text is larger than its stated size

    friend bool operator==(const Look&, const Look&) = default;
};

/// The look is a property of the process, as its palette is. It must be set before the widgets that
/// use it are created.
void setLook(const Look& look);
[[nodiscard]] const Look& look();

/// 1 for the default font sizes of desktops (up to 11 points), more if the user has chosen a larger
/// one.
[[nodiscard]] double textScaleFor(const QFont& system);

[[nodiscard]] QColor primaryPurple();
[[nodiscard]] QColor primaryPink();
[[nodiscard]] QColor successGreen();
/// The same for marks without text on them.
[[nodiscard]] QColor successMark();
[[nodiscard]] QColor warningOrange();
[[nodiscard]] QColor dangerRed();

/// White with that opacity: for text and symbols, for areas, and for lines around them.
[[nodiscard]] QColor text(double opacity = 1);
[[nodiscard]] QColor veil(double opacity);
[[nodiscard]] QColor line(double opacity);

[[nodiscard]] QColor withOpacity(QColor colour, double opacity);

/// From corner to corner, along the diagonal of `area`.
[[nodiscard]] QBrush mainGradient(const QRectF& area);
[[nodiscard]] QBrush windowBackgroundGradient(const QRectF& area);
/// From left to right.
[[nodiscard]] QBrush brightGradient(const QRectF& area);
/// From top to bottom.
[[nodiscard]] QBrush fallingGradient(const QRectF& area, const QColor& top, const QColor& bottom);
/// From the top left to the bottom right corner.
[[nodiscard]] QBrush edgeGradient(const QRectF& area, const QColor& first, const QColor& last);

/// The colours below and above the window's gradient.
[[nodiscard]] QColor windowGround();
[[nodiscard]] QColor windowHaze();
/// The layer that sets a card off from the window.
[[nodiscard]] QColor cardHaze();

inline constexpr double buttonCornerRadius = 10;
inline constexpr double cardCornerRadius = 14;
inline constexpr double noteCornerRadius = 12;
inline constexpr double windowCornerRadius = 16;
/// Of anything that is disabled.
inline constexpr double disabledOpacity = 0.45;

/// The interface's font in any size, and the rounded one.
[[nodiscard]] QFont systemFont(double points, QFont::Weight weight = QFont::Normal);
[[nodiscard]] QFont roundedFont(double points, QFont::Weight weight = QFont::Bold);

[[nodiscard]] QFont titleFont();
[[nodiscard]] QFont sectionFont();
[[nodiscard]] QFont bodyFont();
[[nodiscard]] QFont calloutFont(QFont::Weight weight = QFont::Normal);
[[nodiscard]] QFont captionFont(QFont::Weight weight = QFont::Normal);
[[nodiscard]] QFont smallCaptionFont(QFont::Weight weight = QFont::Normal);

} // namespace velmorquit::AppTheme
