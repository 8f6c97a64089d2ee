#include "Linux/Applications/WorkspaceWindows.h"

#include <algorithm>
#include <iterator>

#include <unistd.h>

namespace velmorquit {

namespace {

/// A run asks all applications at once, so they share one look at the processes. Programs that
/// ended before the run began must not count any more.
constexpr Duration sharedLook = 20ms;

/// How long a terminal's shell must have been at rest before it is asked, and how often to look
/// for that before it is asked anyway.
constexpr Duration rest = 150ms;
constexpr int mostLooks = 10;

} // namespace

std::optional<StayReason> WorkspaceWindows::obstacle(ProcessId process) {
    if (hasJob(process))
        return knowsProcesses_ ? StayReason::busyTerminal : StayReason::cannotBeAsked;
    return windowsToClose(process).empty() ? std::optional(StayReason::cannotBeAsked)
                                           : std::nullopt;
}

void WorkspaceWindows::askToClose(ProcessId process) {
    look();
    if (!knowsProcesses_)
        return;
    if (hasTerminal(process, table_, facts()))
        askAtRest(process, mostLooks, terminalsRest(process, table_, facts()));
    else
        askNow(windowsToClose(process));
}

// A shell that is just about to show its prompt may miss the hang-up of its terminal, which then
// waits for it forever. Also velmorctl needs a moment to hear of a run and to leave.
void WorkspaceWindows::askAtRest(ProcessId process, int looks, bool hasRested) {
    asking_[process] =
        loop_.after(rest, [this, process, looks, hasRested, windows = windowsToClose(process)] {
            // Helpers that build a prompt would count as jobs as well.
            const bool isBusy = hasJob(process);
            const bool rests = !isBusy && terminalsRest(process, table_, facts());
            if (looks > 0 && !(rests && hasRested)) {
                askAtRest(process, looks - 1, rests);
                return;
            }
            asking_.erase(process);
            if (!isBusy)
                askNow(windows);
        });
}

void WorkspaceWindows::askNow(const std::vector<std::uint64_t>& windows) {
    for (const std::uint64_t window : windows)
        source_.askToClose(window);
}

bool WorkspaceWindows::askWithoutWindows(ProcessId process) {
    const auto& toplevels = source_.toplevels();
    const bool hasWindows = std::ranges::any_of(
        toplevels, [process](const Toplevel& one) { return one.process == process; });
    if (!surroundings_.ask || hasWindows || hasJob(process))
        return false;
    surroundings_.ask(process);
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

std::vector<Toplevel> WorkspaceWindows::windowsOf(ProcessId process) {
    std::vector<Toplevel> found;
    std::ranges::copy_if(source_.toplevels(), std::back_inserter(found),
                         [process](const Toplevel& one) { return one.process == process; });
    return found;
}

bool WorkspaceWindows::isInTray(ProcessId process) {
    return surroundings_.trayOwners && surroundings_.trayOwners().contains(process);
}

bool WorkspaceWindows::clickInTray(ProcessId process) {
    return surroundings_.clickInTray && surroundings_.clickInTray(process);
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
    look();
    return !knowsProcesses_ || hasTerminalJob(process, table_, facts());
}

std::vector<std::uint64_t> WorkspaceWindows::windowsToClose(ProcessId process) const {
    std::vector<std::uint64_t> windows;
    for (const Toplevel& toplevel : source_.toplevels()) {
        if (toplevel.process == process && !toplevel.isDialogOfAnother &&
            toplevel.canBeAskedToClose)
            windows.push_back(toplevel.window);
    }
    return windows;
}

void WorkspaceWindows::look() {
    const Uptime now = loop_.uptime();
    if (lookedAt_ && now - *lookedAt_ <= sharedLook)
        return;
    table_ = readProcessTable();
    // Reading it takes descriptors. Without them nobody knows what runs in a terminal.
    knowsProcesses_ = std::ranges::find(table_, ::getpid(), &ProcessStat::id) != table_.end();
    owners_.clear();
    for (const Toplevel& toplevel : source_.toplevels())
        owners_.insert(toplevel.process);
    lookedAt_ = now;
}

ProcessFacts WorkspaceWindows::facts() const {
    return {.executable = [](ProcessId id) { return executableName(id); },
            .arguments = [](ProcessId id) { return processArguments(id); },
            .ownsWindows = [this](ProcessId id) { return owners_.contains(id); },
            .ignoresHangup = [](ProcessId id) { return ignoresHangup(id); }};
}

} // namespace velmorquit
