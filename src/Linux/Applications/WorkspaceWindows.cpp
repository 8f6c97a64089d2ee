#include "Linux/Applications/WorkspaceWindows.h"

#include "Linux/Proc/TerminalJobs.h"

#include <algorithm>

namespace velmorquit {

namespace {

/// A run asks all applications at one go: they share one look at the processes.
constexpr Duration sharedLook = 100ms;

} // namespace

std::optional<StayReason> WorkspaceWindows::askToClose(ProcessId process) {
    if (hasJob(process))
        return StayReason::busyTerminal;
    bool isAsked = false;
    for (const Toplevel& toplevel : source_.toplevels()) {
        if (toplevel.process != process || toplevel.isDialogOfAnother ||
            !toplevel.canBeAskedToClose)
            continue;
        source_.askToClose(toplevel.window);
        isAsked = true;
    }
    if (!isAsked)
        return StayReason::cannotBeAsked;
    return std::nullopt;
}

bool WorkspaceWindows::askWithoutWindows(ProcessId process) {
    const auto& toplevels = source_.toplevels();
    const bool hasWindows = std::ranges::any_of(
        toplevels, [process](const Toplevel& one) { return one.process == process; });
    if (!askOtherwise_ || hasWindows || hasJob(process))
        return false;
    askOtherwise_(process);
    return true;
}

bool WorkspaceWindows::bringToFront(ProcessId process) {
    std::uint64_t last = 0;
    for (const Toplevel& toplevel : source_.toplevels()) {
        if (toplevel.process == process)
            last = toplevel.window;
    }
    if (last != 0)
        source_.bringToFront(last);
    return last != 0;
}

std::vector<Toplevel> WorkspaceWindows::dialogs(ProcessId process) {
    std::vector<Toplevel> found;
    for (const Toplevel& toplevel : source_.toplevels()) {
        if (toplevel.process == process && toplevel.isDialogOfAnother)
            found.push_back(toplevel);
    }
    return found;
}

bool WorkspaceWindows::isDeaf(ProcessId process) {
    const std::vector<Toplevel> toplevels = source_.toplevels();
    bool isDeaf = false;
    for (const Toplevel& toplevel : toplevels) {
        if (toplevel.process != process || !toplevel.canBePinged)
            continue;
        source_.ping(toplevel.window);
        isDeaf |= source_.isDeaf(toplevel.window);
    }
    return isDeaf;
}

bool WorkspaceWindows::hasJob(ProcessId process) {
    const Uptime now = loop_.uptime();
    if (!lookedAt_ || now - *lookedAt_ > sharedLook) {
        table_ = readProcessTable();
        owners_.clear();
        for (const Toplevel& toplevel : source_.toplevels())
            owners_.insert(toplevel.process);
        lookedAt_ = now;
    }
    return hasTerminalJob(process, table_,
                          {.executable = [](ProcessId id) { return executableName(id); },
                           .arguments = [](ProcessId id) { return processArguments(id); },
                           .ownsWindows = [this](ProcessId id) { return owners_.contains(id); }});
}

} // namespace velmorquit
