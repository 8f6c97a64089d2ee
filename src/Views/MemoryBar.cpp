#include "Views/MemoryBar.h"

#include "Platform/Formats.h"
#include "Services/Panel/PanelTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace velmorquit {
namespace {
constexpr int thickness = 8;
}

MemoryBar::MemoryBar(const Formats& formats, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, std::nullopt, parent), formats_(formats),
      figures_(new Label(AppTheme::systemFont(12, QFont::DemiBold), AppTheme::text())),
      track_(new QWidget) {
    setObjectName(QStringLiteral("MemoryBar"));
    figures_->setObjectName(QStringLiteral("memoryFigures"));
    figures_->setFigures(Figures::tabular);
    auto* title = new Label(AppTheme::sectionFont(), AppTheme::text());
    title->setText(toQt(localized("Memoria")));
    track_->setFixedHeight(thickness);

    QVBoxLayout& lines = column(*this, 7, allSides(12));
    QHBoxLayout& head = rowIn(lines, 6);
    head.addWidget(new SymbolLabel(QStringLiteral("memorychip"), 14, AppTheme::text()));
    head.addWidget(title);
    head.addStretch();
    head.addWidget(figures_);
    lines.addWidget(track_);

    animation_.setDuration(600);
    animation_.setEasingCurve(QEasingCurve::OutQuad);
    connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        shown_ = value.toDouble();
        update(track_->geometry());
    });
}

void MemoryBar::render(const MemoryMonitor::SystemMemory& memory) {
    figures_->setText(toQt(PanelTexts::memory(memory, formats_)));
    const double fraction =
        memory.total == 0
            ? 0
            : std::min(1.0, static_cast<double>(memory.used) / static_cast<double>(memory.total));
    if (fraction == fraction_)
        return;
    fraction_ = fraction;
    animation_.stop();
    // A motion that nobody can see needn't be drawn thirty times.
    const double pixels = std::abs(fraction - shown_) * track_->width() * devicePixelRatioF();
    if (!isVisible() || AppTheme::look().isMotionReduced || pixels < 1) {
        shown_ = fraction;
        update(track_->geometry());
        return;
    }
    animation_.setStartValue(shown_);
    animation_.setEndValue(fraction);
    animation_.start();
}

void MemoryBar::paintEvent(QPaintEvent* event) {
    GlassCard::paintEvent(event);
    QPainter painter(this);
    const QRectF track = track_->geometry();
    fillRounded(painter, track, thickness / 2.0,
                AppTheme::veil(AppTheme::look().isHighContrast ? 0.35 : 0.15));
    QRectF fill = track;
    fill.setWidth(std::max<double>(thickness, track.width() * shown_));
    fillRounded(painter, fill, thickness / 2.0, AppTheme::brightGradient(fill));
}

} // namespace velmorquit
