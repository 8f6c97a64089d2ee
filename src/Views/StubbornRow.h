#pragma once

#include "Services/QuitController/QuitController.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace velmorquit {

class Label;
class TextButton;

/// One application that did not quit: why, and what can be done about it.
class StubbornRow : public QWidget {
public:
    StubbornRow(QuitController& controller, OpenApp app, QWidget* parent = nullptr);

    [[nodiscard]] const std::shared_ptr<RunningApplication>& app() const { return app_.app; }

    /// None for a reason that has not been looked for.
    void render(std::optional<StayReason> reason);

    /// In the order in which the keyboard goes through them.
    [[nodiscard]] std::vector<QWidget*> buttons() const;

private:
    void askAgain();

    QuitController& controller_;
    OpenApp app_;
    QWidget* show_;
    QWidget* force_;
    QWidget* more_;
    Label* why_;
    TextButton* again_;
};

} // namespace velmorquit
