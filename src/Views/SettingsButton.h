#pragma once

#include <QPushButton>

#include <functional>

namespace velmorquit {

class AppUpdater;
class Preferences;

/// The round gear in the panel's head, with a menu of what can be set.
class SettingsButton : public QPushButton {
public:
    struct Actions {
        std::function<void()> exit;
    };

    SettingsButton(Preferences& preferences, AppUpdater& updater, Actions actions,
                   QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openMenu();

    Preferences& preferences_;
    AppUpdater& updater_;
    Actions actions_;
};

} // namespace velmorquit
