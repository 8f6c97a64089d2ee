#pragma once

#include "Services/MenuBar/Menu.h"

#include <QPushButton>

#include <functional>

namespace velmorquit {

/// The round gear in the panel's head, which opens a menu below itself.
class SettingsButton : public QPushButton {
public:
    /// `makeMenu` is called each time that it opens one.
    explicit SettingsButton(std::function<Menu()> makeMenu, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openMenu();

    std::function<Menu()> makeMenu_;
};

} // namespace velmorquit
