#pragma once

#include "Services/MenuBar/Menu.h"
#include "Services/QuitController/QuitController.h"

#include <QWidget>

#include <functional>

namespace velmorquit {

class AppUpdater;
class Label;
class PrimaryButton;

/// The panel's head: what the program is, how many applications are open, an update when there is
/// one, and the settings.
class HeaderView : public QWidget {
public:
    /// `settingsMenu` is called each time that the settings are opened.
    HeaderView(QuitController& controller, AppUpdater& updater, std::function<Menu()> settingsMenu,
               QWidget* parent = nullptr);

    void render();

private:
    QuitController& controller_;
    AppUpdater& updater_;
    Label* count_;
    PrimaryButton* update_;
};

} // namespace velmorquit
