#pragma once

#include "Services/QuitController/QuitController.h"
#include "Views/SettingsButton.h"

#include <QWidget>

namespace velmorquit {

class Label;
class PrimaryButton;

/// The panel's head: what the program is, how many applications are open, an update when there is
/// one, and the settings.
class HeaderView : public QWidget {
public:
    HeaderView(QuitController& controller, AppUpdater& updater, Preferences& preferences,
               SettingsButton::Actions actions, QWidget* parent = nullptr);

    void render();

private:
    QuitController& controller_;
    AppUpdater& updater_;
    Label* count_;
    PrimaryButton* update_;
};

} // namespace velmorquit
