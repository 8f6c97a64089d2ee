#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

namespace velmorquit {

class CheckBox;
class Formats;
class Label;
class TimeField;

/// Schedules a run: after a span, or at a time of day.
class SchedulerCard : public GlassCard {
public:
    static constexpr std::array presets{15, 30, 60, 120}; ///< minutes

    SchedulerCard(QuitController& controller, const Formats& formats, QWidget* parent = nullptr);

    /// Starts over, with eleven in the evening.
    void reset();
    void render();

    /// Called when a run was scheduled: the card is no longer needed.
    std::function<void()> onScheduled;

private:
    void schedule(WallTime date);
    [[nodiscard]] WallTime pickedTime() const;

    QuitController& controller_;
    const Formats& formats_;
    Label* title_;
    TimeField* time_;
    CheckBox* confirm_;
};

} // namespace velmorquit
