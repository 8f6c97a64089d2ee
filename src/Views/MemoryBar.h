#pragma once

#include "Services/MemoryMonitor.h"
#include "Theme/GlassCard.h"

#include <QVariantAnimation>

namespace velmorquit {

class Formats;
class Label;

/// How much of the computer's memory is in use.
class MemoryBar : public GlassCard {
public:
    explicit MemoryBar(const Formats& formats, QWidget* parent = nullptr);

    void render(const MemoryMonitor::SystemMemory& memory);

    /// The filled part of the bar at rest, 0 to 1.
    [[nodiscard]] double fraction() const { return fraction_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Formats& formats_;
    Label* figures_;
    QWidget* track_;
    double fraction_ = 0;
    double shown_ = 0;
    QVariantAnimation animation_;
};

} // namespace velmorquit
