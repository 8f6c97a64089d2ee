#include "Linux/Tray/TrayOwners.h"

#include "Linux/X11/X11TrayIcons.h"
#include "Linux/X11/X11Windows.h"

#include <algorithm>

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

bool TrayOwners::click(ProcessId process) {
    if (items_.click(process))
        return true;
    X11Connection& connection = events_.connection();
    X11TrayIcons icons(connection);
    X11Windows windows(connection);
    const std::set<xcb_window_t> all = icons.windows();
    const auto icon = std::ranges::find_if(
        all, [&](xcb_window_t window) { return windows.process(window) == process; });
    if (icon != all.end())
        icons.click(*icon);
    events_.read();
    return icon != all.end();
}

} // namespace velmorquit
