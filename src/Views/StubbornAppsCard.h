#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <map>
#include <vector>

class QVBoxLayout;

namespace velmorquit {

/// The applications that did not quit when they were asked, and what can be done about them.
class StubbornAppsCard : public GlassCard {
public:
    explicit StubbornAppsCard(QuitController& controller, QWidget* parent = nullptr);

    void render();

private:
    struct Row {
        std::shared_ptr<RunningApplication> app;
        QWidget* widget = nullptr;
        QWidget* show = nullptr;
        QWidget* force = nullptr;
    };

    Row makeRow(const OpenApp& app);
    void layOut();

    QuitController& controller_;
    QVBoxLayout* rows_;
    std::map<ProcessId, Row> rowOf_;
    std::vector<ProcessId> order_;
    QWidget* leave_;
    QWidget* forceAll_;
};

} // namespace velmorquit
