#include "Theme/CircleActionButton.h"

#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Symbols.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <QTextLayout>

namespace velmorquit {
namespace {

constexpr double symbolHeight = 34;
constexpr double captionGap = 6;
constexpr double captionPadding = 14;
constexpr int mostLines = 2;
constexpr double leastCaption = 0.8;

double between(double rest, double pressed, double share) {
    return rest + (pressed - rest) * share;
}

/// The text broken into as many lines as that width requires.
QStringList wrapped(const QString& text, const QFont& font, double width) {
    QTextLayout layout(text, font);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines << text.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

bool fits(const QStringList& lines, const QFont& font, double width) {
    if (lines.size() > mostLines)
        return false;
    for (const QString& line : lines) {
        if (textWidth(font, line) > width + 0.5)
            return false;
    }
    return true;
}

} // namespace

CircleActionButton::CircleActionButton(int diameter, const QColor& tint, QWidget* parent)
    : Aimed(parent), diameter_(diameter), tint_(tint), spinner_(this) {
    setFont(AppTheme::roundedFont(13));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    spinner_.hide();
    animation_.setDuration(120);
    animation_.setEasingCurve(QEasingCurve::OutQuad);
    connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        pressed_ = value.toDouble();
        updateShadow(*this);
        update();
    });
    connect(this, &QPushButton::pressed, this, [this] { press(true); });
    connect(this, &QPushButton::released, this, [this] { press(false); });
}

void CircleActionButton::setSymbol(const QString& name) {
    symbol_ = name;
    update();
}

void CircleActionButton::setBusy(bool isBusy) {
    spinner_.setVisible(isBusy);
    update();
}

void CircleActionButton::press(bool isDown) {
    animation_.stop();
    animation_.setStartValue(pressed_);
    animation_.setEndValue(isDown ? 1.0 : 0.0);
    if (AppTheme::look().isMotionReduced)
        animation_.setDuration(0);
    animation_.start();
}

double CircleActionButton::scale() const { return between(1, 0.95, pressed_); }

RoundedShape CircleActionButton::shape() const {
    const double side = diameter_ * scale();
    const double inset = (diameter_ - side) / 2;
    return {{inset, inset, side, side}, side / 2};
}

Shadow CircleActionButton::shadow() const {
    return {AppTheme::withOpacity(tint_, 0.55), between(16, 5, pressed_),
            QPointF(0, between(9, 2, pressed_))};
}

bool CircleActionButton::hitButton(const QPoint& position) const {
    const QPointF away = position - QRectF(rect()).center();
    return away.x() * away.x() + away.y() * away.y() <= diameter_ * diameter_ / 4.0;
}

QStringList CircleActionButton::captionLines(QFont& font) const {
    const double width = diameter_ - 2 * captionPadding;
    QStringList lines = wrapped(text(), font, width);
    const int smallest = qRound(font.pixelSize() * leastCaption);
    while (!fits(lines, font, width) && font.pixelSize() > smallest) {
        font.setPixelSize(font.pixelSize() - 1);
        lines = wrapped(text(), font, width);
    }
    if (lines.size() > mostLines)
        lines = {lines.first(), QStringList(lines.mid(1)).join(QLatin1Char(' '))};
    for (QString& line : lines)
        line = QFontMetricsF(font).elidedText(line, Qt::ElideRight, width);
    return lines;
}

void CircleActionButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area(0, 0, diameter_, diameter_);
    scaleAround(painter, area, scale());

    painter.setPen(Qt::NoPen);
    painter.setBrush(AppTheme::mainGradient(area));
    painter.drawEllipse(area);
    if (!AppTheme::look().isHighContrast) {
        QLinearGradient gloss(area.topLeft(), area.bottomLeft());
        gloss.setColorAt(0, AppTheme::veil(0.34));
        gloss.setColorAt(0.5, AppTheme::veil(0.02));
        gloss.setColorAt(1, AppTheme::veil(0.02));
        painter.setBrush(gloss);
        painter.drawEllipse(area);
    }
    strokeInside(painter, area, diameter_ / 2.0, AppTheme::line(0.45));

    QFont font = this->font();
    const QStringList lines = captionLines(font);
    const double lineHeight = QFontMetricsF(font).height();
    const double height =
        symbolHeight + captionGap + lineHeight * static_cast<double>(lines.size());
    double y = (diameter_ - height) / 2;
    const double box = Symbols::boxSize(symbolHeight);
    if (spinner_.isHidden())
        Symbols::draw(painter, symbol_,
                      {(diameter_ - box) / 2, y + (symbolHeight - box) / 2, box, box},
                      AppTheme::text());
    else
        spinner_.move((diameter_ - spinner_.width()) / 2, qRound(y));
    y += symbolHeight + captionGap;
    painter.setFont(font);
    painter.setPen(AppTheme::text());
    for (const QString& line : lines) {
        const double x = (diameter_ - textWidth(font, line)) / 2;
        drawLine(painter, {x, y, diameter_ - x, lineHeight}, line);
        y += lineHeight;
    }
    if (showsFocus(*this))
        drawFocus(painter, area, diameter_ / 2.0);
}

} // namespace velmorquit
