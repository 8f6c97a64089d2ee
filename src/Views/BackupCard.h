#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

namespace velmorquit {

class Label;
class ProgressTrack;

/// The running backup, and the two ways to stop it.
class BackupCard : public GlassCard {
public:
    explicit BackupCard(QuitController& controller, QWidget* parent = nullptr);

    void render(std::optional<double> fraction);

private:
    QuitController& controller_;
    ProgressTrack* track_;
    Label* progress_;
    Label* afterwards_;
};

} // namespace velmorquit
