#include "Linux/Tray/TrayOwners.h"

#include "Linux/X11/X11TrayIcons.h"
#include "Linux/X11/X11Windows.h"

namespace velmorquit {

TrayOwners::TrayOwners(const QDBusConnection& bus, X11Events& events, ProcessId own)
    : items_(bus), events_(events), own_(own) {}

std::set<ProcessId> TrayOwners::processes() {
    X11Connection& connection = events_.connection();
    std::set<ProcessId> processes =
        X11Windows(connection).processes(X11TrayIcons(connection).windows());
    events_.read();
    processes.merge(items_.processes());
    processes.erase(own_);
    return processes;
}

} // namespace velmorquit
