#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <vector>

namespace velmorquit {

class Label;
class Workspace;

/// What the last run has closed, to be opened again.
class ReopenCard : public GlassCard {
public:
    ReopenCard(QuitController& controller, const Workspace& workspace, QWidget* parent = nullptr);

    void render(const std::vector<SavedApp>& apps);

private:
    QuitController& controller_;
    const Workspace& workspace_;
    QWidget* icons_;
    Label* title_;
    Label* names_;
    std::vector<SavedApp> shown_;
};

} // namespace velmorquit
