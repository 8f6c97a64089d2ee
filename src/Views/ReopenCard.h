#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <string>
#include <vector>

namespace velmorquit {

class Label;
class Workspace;

/// The applications that the last run closed and that can be reopened.
class ReopenCard : public GlassCard {
public:
    ReopenCard(QuitController& controller, const Workspace& workspace, QWidget* parent = nullptr);

    /// `lost` are the names of those closed at the same time that can't be reopened.
    void render(const std::vector<SavedApp>& apps, const std::vector<std::string>& lost);

private:
    QuitController& controller_;
    const Workspace& workspace_;
    QWidget* icons_;
    Label* title_;
    Label* names_;
    Label* lost_;
    std::vector<SavedApp> shown_;
};

} // namespace velmorquit
