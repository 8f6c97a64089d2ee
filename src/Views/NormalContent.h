#pragma once

#include "Platform/Desktop.h"
#include "Services/QuitController/QuitController.h"

#include <QWidget>

#include <functional>

class QAbstractButton;

namespace velmorquit {

class AppList;
class CircleActionButton;
class EndCard;
class ExtrasRow;
class NoteCard;
class PowerActionPicker;
class ReopenCard;
class ScheduleCard;
class SchedulerCard;
class StatusLineView;

/// The panel's content while no run is waiting for the user: the round button, the action after a
/// run, its other options, and the open applications.
class NormalContent : public QWidget {
public:
    NormalContent(QuitController& controller, const Desktop& desktop, QWidget* parent = nullptr);

    /// Shows the present state.
    void render();

    /// Limits the height of the list.
    void setListRoom(int height);

    /// The round button.
    [[nodiscard]] QAbstractButton& quitButton() const;

    /// Called when the user has opened or closed a part of it: it has to be rendered again.
    std::function<void()> onOtherParts;

private:
    void showScheduler(bool isShown);
    void renderEnd();
    void renderCards();

    QuitController& controller_;
    Desktop desktop_;
    CircleActionButton* quit_;
    StatusLineView* status_;
    EndCard* end_;
    PowerActionPicker* picker_;
    ExtrasRow* extras_;
    ScheduleCard* schedule_;
    SchedulerCard* scheduler_;
    NoteCard* note_;
    ReopenCard* reopen_;
    AppList* list_;
    bool showsScheduler_ = false;
};

} // namespace velmorquit
