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

private:
    QuitController controller_;
    RemoteControl remoteControl_;
    TrayItem trayItem_;
};

} // namespace velmorquit
