#pragma once

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>

namespace velmorquit {

/// The program's icon in the tray, with a menu.
class TrayItem {
public:
    struct Actions {
        std::function<void()> quitAll;
        std::function<void()> exit;
    };

    explicit TrayItem(Actions actions);

private:
    Actions actions_;
    QMenu menu_;
    QSystemTrayIcon icon_;
};

} // namespace velmorquit
