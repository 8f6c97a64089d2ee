#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <map>
#include <vector>

class QVBoxLayout;

namespace velmorquit {

class StubbornRow;

/// The applications that did not quit when asked, and what can be done about them.
class StubbornAppsCard : public GlassCard {
public:
    explicit StubbornAppsCard(QuitController& controller, QWidget* parent = nullptr);

    void render();

private:
    void layOut();

    QuitController& controller_;
    QVBoxLayout* rows_;
    std::map<ProcessId, StubbornRow*> rowOf_;
    std::vector<ProcessId> order_;
    QWidget* leave_;
    QWidget* forceAll_;
};

} // namespace velmorquit
