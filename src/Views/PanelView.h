#pragma once

#include "Platform/Desktop.h"
#include "Services/AppUpdater.h"
#include "Services/MenuBar/Menu.h"
#include "Services/QuitController/QuitController.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace velmorquit {

class BackupCard;
class BackupFailedCard;
class FooterView;
class HeaderView;
class MemoryBar;
class NormalContent;
class StubbornAppsCard;

/// All that the panel shows: it reads the controller and has no state of its own. It draws no
/// ground: that is its frame's.
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
    void observe();
    void renderLater();

    QuitController& controller_;
    AppUpdater& updater_;
    Desktop desktop_;
    HeaderView* header_;
    MemoryBar* memory_;
    NormalContent* normal_;
    BackupCard* backup_;
    StubbornAppsCard* stubborn_;
    BackupFailedCard* backupFailed_;
    FooterView* footer_;
    Uptime shownAt_;
    bool isRenderPending_ = false;
    Handle macLine_;
    std::vector<Handle> observers_;
};

} // namespace velmorquit
