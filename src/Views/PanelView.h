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

/// The panel's content: it reads the controller and has no state of its own. Its frame draws the
/// background.
class PanelView : public QWidget {
public:
    static constexpr int width = 360;
    static constexpr int padding = 18;

    /// `settingsMenu` is called each time the settings are opened.
    PanelView(QuitController& controller, AppUpdater& updater, const Desktop& desktop,
              std::function<Menu()> settingsMenu, QWidget* parent = nullptr);

    /// Shows the present state. On the screen this happens by itself after every change.
    void render();

    /// The height that it needs with a list of that height.
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
