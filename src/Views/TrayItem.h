#pragma once

#include <QMenu>
#include <QMessageBox>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

namespace velmorquit {

/// The program's icon in the tray, with a menu.
class TrayItem {
public:
    struct Actions {
        std::function<void()> quitAll;
        std::function<void()> exit;
    };

    explicit TrayItem(Actions actions);

    /// Tells the user that the program runs, by the icon; in a window where there is no tray.
    void sayThatItRuns();

private:
    Actions actions_;
    QMenu menu_;
    QSystemTrayIcon icon_;
    /// Made when it is needed for the first time.
    std::unique_ptr<QMessageBox> notice_;
};

} // namespace velmorquit
