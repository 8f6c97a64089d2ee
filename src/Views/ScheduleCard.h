#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

namespace velmorquit {

class ConfirmScheduleView;
class Formats;
class Label;
class SymbolLabel;

/// The scheduled run, with the time left until then; once that has passed, the question whether to
/// begin.
class ScheduleCard : public GlassCard {
public:
    ScheduleCard(QuitController& controller, const Formats& formats, QWidget* parent = nullptr);

    void render();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void makeCountdown();
    void renderRemaining();

    QuitController& controller_;
    const Formats& formats_;
    QWidget* countdown_;
    ConfirmScheduleView* question_;
    SymbolLabel* symbol_;
    Label* title_;
    Label* time_;
    Label* remaining_;
    Handle ticks_;
};

} // namespace velmorquit
