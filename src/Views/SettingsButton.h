#pragma once

#include "Services/MenuBar/Menu.h"

#include <QPushButton>

#include <functional>

namespace velmorquit {

/// The round gear at the top of the panel, which opens a menu below itself.
class SettingsButton : public QPushButton {
public:
    /// `makeMenu` is called each time the menu is opened.
    explicit SettingsButton(std::function<Menu()> makeMenu, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openMenu();

    std::function<Menu()> makeMenu_;
};

} // namespace velmorquit
