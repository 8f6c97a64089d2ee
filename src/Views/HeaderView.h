#pragma once

#include "Services/MenuBar/Menu.h"
#include "Services/QuitController/QuitController.h"

#include <QWidget>

#include <functional>

namespace velmorquit {

class AppUpdater;
class Label;
class PrimaryButton;

/// The top of the panel: the program's name, the number of open applications, an update if there is
/// one, and the settings.
class HeaderView : public QWidget {
public:
    /// `settingsMenu` is called each time the settings are opened.
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
