#pragma once

#include "Platform/Desktop.h"
#include "Services/AppUpdater.h"
#include "Services/MenuBar/Menu.h"
#include "Services/QuitController/QuitController.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace velmorquit {

class AppList;
class BackupCard;
class BackupFailedCard;
class CircleActionButton;
class EndCard;
class ExtrasRow;
class FooterView;
class HeaderView;
class MemoryBar;
class NoteCard;
class PowerActionPicker;
class ReopenCard;
class ScheduleCard;
class SchedulerCard;
class StatusLineView;
class StubbornAppsCard;

/// All that the panel shows: it reads the controller and has no state of its own but whether the
/// scheduler is open. It draws no ground: that is its frame's.
class PanelView : public QWidget {
public:
    static constexpr int width = 360;
    static constexpr int padding = 18;

    /// `settingsMenu` is called each time that the settings are opened.
    PanelView(QuitController& controller, AppUpdater& updater, const Desktop& desktop,
              std::function<Menu()> settingsMenu, QWidget* parent = nullptr);

    /// Shows what is true now. While it is on the screen it does so by itself after every change.
    void render();

    /// Height that it needs when its list may be that high.
    [[nodiscard]] int heightFor(int listHeight);

    /// Called when it needs another height.
    std::function<void()> onResize;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void makeNormalContent();
    void observe();
    void renderLater();
    void renderNormalContent();
    void renderEnd();
    void renderCards();

    QuitController& controller_;
    AppUpdater& updater_;
    Desktop desktop_;
    HeaderView* header_;
    MemoryBar* memory_;
    QWidget* normal_;
    CircleActionButton* quit_;
    StatusLineView* status_;
    EndCard* end_;
    PowerActionPicker* picker_;
    AppList* list_;
    StubbornAppsCard* stubborn_;
    FooterView* footer_;
    ExtrasRow* extras_;
    ScheduleCard* schedule_;
    SchedulerCard* scheduler_;
    NoteCard* note_;
    ReopenCard* reopen_;
    BackupCard* backup_;
    BackupFailedCard* backupFailed_;
    bool showsScheduler_ = false;
    Uptime shownAt_;
    bool isRenderPending_ = false;
    Handle macLine_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
