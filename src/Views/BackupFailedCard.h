#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <string>

namespace velmorquit {

class Label;
class PrimaryButton;

/// A failed backup: why, and whether to go on without it.
class BackupFailedCard : public GlassCard {
public:
    explicit BackupFailedCard(QuitController& controller, QWidget* parent = nullptr);

    void render(const std::string& reason);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void renderCountdown();

    QuitController& controller_;
    Label* reason_;
    Label* countdown_;
    PrimaryButton* goOn_;
    Handle ticks_;
};

} // namespace velmorquit
