#pragma once

#include "Platform/Desktop.h"
#include "Services/QuitController/QuitController.h"
#include "Services/RemoteControl.h"
#include "Views/TrayItem.h"

namespace velmorquit {

/// Owns the long-lived objects and wires them, in the order in which they start.
class AppDelegate {
public:
    explicit AppDelegate(const Desktop& desktop);

    /// Ends the program in a later turn of the loop. A run that is under way ends first, so that
    /// whoever waits for it hears of that.
    void end();

private:
    QuitController controller_;
    RemoteControl remoteControl_;
    Application& application_;
    TrayItem trayItem_;
};

} // namespace velmorquit
