#pragma once

#include "Services/QuitController/QuitController.h"

#include <QWidget>

namespace velmorquit {

class Label;

/// Asks whether the scheduled run may begin now.
class ConfirmScheduleView : public QWidget {
public:
    explicit ConfirmScheduleView(QuitController& controller, QWidget* parent = nullptr);

    void render(PowerAction action);

private:
    QuitController& controller_;
    Label* question_;
};

} // namespace velmorquit
