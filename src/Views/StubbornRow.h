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

    /// None if the reason has not been looked up yet.
    void render(std::optional<StayReason> reason);

    /// In keyboard order.
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
