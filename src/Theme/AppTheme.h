#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QRectF>

/// Colours, gradients and type of all that the program draws. Lengths are in points, which are the
/// toolkit's device-independent pixels.
namespace velmorquit::AppTheme {

/// What the user has asked of all that is drawn.
struct Look {
    bool isHighContrast = false;  ///< opaque grounds, white text, strong lines
    bool isMotionReduced = false; ///< changes happen at once
    double textScale = 1;         ///< by which all type is larger than its stated size

    friend bool operator==(const Look&, const Look&) = default;
};

/// The look is a property of the process, as its palette is. It is set before what is to have it is
/// made.
void setLook(const Look& look);
[[nodiscard]] const Look& look();

/// 1 for the font sizes that desktops come with (up to 11 points), more where the user has chosen
/// a larger one.
[[nodiscard]] double textScaleFor(const QFont& system);

[[nodiscard]] QColor primaryPurple();
[[nodiscard]] QColor primaryPink();
[[nodiscard]] QColor successGreen();
/// The same for a mark that is not written on.
[[nodiscard]] QColor successMark();
[[nodiscard]] QColor warningOrange();
[[nodiscard]] QColor dangerRed();

/// White of that opacity, for text and symbols, for areas, and for lines around them.
[[nodiscard]] QColor text(double opacity = 1);
[[nodiscard]] QColor veil(double opacity);
[[nodiscard]] QColor line(double opacity);

[[nodiscard]] QColor withOpacity(QColor colour, double opacity);

/// Corner to corner, along the diagonal of `area`.
[[nodiscard]] QBrush mainGradient(const QRectF& area);
[[nodiscard]] QBrush windowBackgroundGradient(const QRectF& area);
/// From left to right.
[[nodiscard]] QBrush brightGradient(const QRectF& area);
/// From top to bottom.
[[nodiscard]] QBrush fallingGradient(const QRectF& area, const QColor& top, const QColor& bottom);
/// From the top left to the bottom right corner.
[[nodiscard]] QBrush edgeGradient(const QRectF& area, const QColor& first, const QColor& last);

/// What lies under the window's gradient, and the layer over it.
[[nodiscard]] QColor windowGround();
[[nodiscard]] QColor windowHaze();
/// The layer that makes a card stand out from the window.
[[nodiscard]] QColor cardHaze();

inline constexpr double buttonCornerRadius = 10;
inline constexpr double cardCornerRadius = 14;
inline constexpr double noteCornerRadius = 12;
inline constexpr double windowCornerRadius = 16;
/// Of what is switched off for now.
inline constexpr double disabledOpacity = 0.45;

/// The interface's type in any size, and the rounded one.
[[nodiscard]] QFont systemFont(double points, QFont::Weight weight = QFont::Normal);
[[nodiscard]] QFont roundedFont(double points, QFont::Weight weight = QFont::Bold);

[[nodiscard]] QFont titleFont();
[[nodiscard]] QFont sectionFont();
[[nodiscard]] QFont bodyFont();
[[nodiscard]] QFont calloutFont(QFont::Weight weight = QFont::Normal);
[[nodiscard]] QFont captionFont(QFont::Weight weight = QFont::Normal);
[[nodiscard]] QFont smallCaptionFont(QFont::Weight weight = QFont::Normal);

} // namespace velmorquit::AppTheme
