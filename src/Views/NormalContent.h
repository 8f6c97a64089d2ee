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

/// What the panel shows between its head and its foot while no run waits for the user: the round
/// button, what is to follow, what else there is to do, and the open applications.
class NormalContent : public QWidget {
public:
    NormalContent(QuitController& controller, const Desktop& desktop, QWidget* parent = nullptr);

    /// Shows what is true now.
    void render();

    /// Lets the list be that high.
    void setListRoom(int height);

    /// The round one.
    [[nodiscard]] QAbstractButton& quitButton() const;

    /// The user has opened or closed a part of it: it is to be rendered again.
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
