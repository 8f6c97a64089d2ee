#include "Theme/AppTheme.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <QLinearGradient>

#include <algorithm>

namespace velmorquit::AppTheme {
namespace {

Look& currentLook() {
    static Look look;
    return look;
}

QColor colour(double red, double green, double blue) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue));
}

/// White text on it then has a contrast of 4.5.
QColor darkerForContrast(const QColor& colour, int percent) {
    return look().isHighContrast ? colour.darker(percent) : colour;
}

QColor white(double opacity) { return withOpacity(Qt::white, opacity); }

QFont font(const QString& family, double points, QFont::Weight weight) {
    QFont font = QGuiApplication::font();
    QStringList families = font.families();
    families.prepend(family);
    font.setFamilies(families);
    font.setPixelSize(std::max(1, qRound(points * look().textScale)));
    font.setWeight(weight);
    return font;
}

} // namespace

void setLook(const Look& look) { currentLook() = look; }
const Look& look() { return currentLook(); }

double textScaleFor(const QFont& system) {
    constexpr double usual = 11;
    return std::clamp(QFontInfo(system).pointSizeF() / usual, 1.0, 2.0);
}

QColor primaryPurple() { return colour(0.42, 0.27, 0.76); }
QColor primaryPink() { return darkerForContrast(colour(0.93, 0.42, 0.63), 150); }
QColor successGreen() { return darkerForContrast(colour(0.30, 0.69, 0.42), 140); }
QColor successMark() { return look().isHighContrast ? colour(0.45, 0.85, 0.58) : successGreen(); }
QColor warningOrange() { return colour(0.95, 0.62, 0.20); }
QColor dangerRed() { return darkerForContrast(colour(0.86, 0.27, 0.27), 110); }

QColor text(double opacity) { return white(look().isHighContrast ? 1 : opacity); }
QColor veil(double opacity) { return white(opacity); }
QColor line(double opacity) { return white(look().isHighContrast ? 0.9 : opacity); }

QColor withOpacity(QColor colour, double opacity) {
    colour.setAlphaF(static_cast<float>(opacity));
    return colour;
}

QBrush edgeGradient(const QRectF& area, const QColor& first, const QColor& last) {
    QLinearGradient gradient(area.topLeft(), area.bottomRight());
    gradient.setColorAt(0, first);
    gradient.setColorAt(1, last);
    return gradient;
}

QBrush mainGradient(const QRectF& area) {
    return edgeGradient(area, primaryPurple(), primaryPink());
}

QBrush windowBackgroundGradient(const QRectF& area) {
    if (look().isHighContrast)
        return windowGround();
    QLinearGradient gradient(area.topLeft(), area.bottomRight());
    gradient.setColorAt(0, colour(0.16, 0.07, 0.30));
    gradient.setColorAt(0.5, primaryPurple());
    gradient.setColorAt(1, withOpacity(primaryPink(), 0.9));
    return gradient;
}

QBrush brightGradient(const QRectF& area) {
    QLinearGradient gradient(area.topLeft(), area.topRight());
    gradient.setColorAt(0, colour(0.93, 0.25, 0.33));
    gradient.setColorAt(1, colour(1.00, 0.55, 0.38));
    return gradient;
}

QBrush fallingGradient(const QRectF& area, const QColor& top, const QColor& bottom) {
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    return gradient;
}

QColor windowGround() { return look().isHighContrast ? QColor(16, 10, 28) : QColor(23, 19, 31); }
QColor windowHaze() { return withOpacity(QColor(26, 20, 38), look().isHighContrast ? 0 : 0.34); }
QColor cardHaze() { return withOpacity(QColor(18, 10, 30), look().isHighContrast ? 1 : 0.24); }

QFont systemFont(double points, QFont::Weight weight) {
    return font(QStringLiteral("Inter"), points, weight);
}

QFont roundedFont(double points, QFont::Weight weight) {
    return font(QStringLiteral("Quicksand"), points, weight);
}

// The rounded font has no semibold: bold is the closest.
QFont titleFont() { return roundedFont(20); }
QFont sectionFont() { return roundedFont(14); }
QFont bodyFont() { return systemFont(13); }
QFont calloutFont(QFont::Weight weight) { return systemFont(12, weight); }
QFont captionFont(QFont::Weight weight) { return systemFont(11, weight); }
QFont smallCaptionFont(QFont::Weight weight) { return systemFont(10, weight); }

} // namespace velmorquit::AppTheme
