#include "Linux/Applications/LinuxWindows.h"

#include "Texts/Shown.h"

#include <algorithm>

#include <unistd.h>

namespace velmorquit {

// A question is a window that blocks everything else, or one that no list shows. Ordinary windows
// that belong to another one aren't asked to close either: they go with it.
std::vector<OpenWindow> LinuxWindows::open() {
    std::vector<OpenWindow> windows;
    const std::vector<Toplevel> toplevels = source_.toplevels();
    for (const Toplevel& toplevel : toplevels) {
        if (toplevel.process == ::getpid())
            continue;
        windows.push_back(
            {.id = toplevel.window,
             .owner = ownerOf(toplevel),
             .isQuestion = toplevel.isModal || !toplevel.isOrdinary,
             .canBeAsked = toplevel.canBeAskedToClose && !toplevel.isDialogOfAnother});
    }
    return windows;
}

WindowOwner LinuxWindows::ownerOf(const Toplevel& toplevel) {
    WindowOwner owner{.process = toplevel.process};
    if (const auto application = workspace_.application(toplevel.process)) {
        owner.name = application->localizedName().value_or("");
        owner.application = application->bundleIdentifier().value_or("");
        owner.isBackground = application->isBackground();
    }
    if (owner.name.empty())
        owner.name = toplevel.identity.className;
    if (owner.name.empty())
        owner.name = shownName(source_.title(toplevel.window));
    if (owner.name.empty())
        owner.name = "App";
    // Room for both, however long they are.
    constexpr std::size_t half = longestShownName / 2 - 2;
    if (!toplevel.machine.empty())
        owner.name = shownText(owner.name, half) + " (" + shownText(toplevel.machine, half) + ')';
    return owner;
}

// Some programs too old to be pinged close at a second request, whatever is lost: their windows are
// asked only once, and count as asked for as long as they are open.
bool LinuxWindows::askToClose(std::uint64_t window) {
    const std::vector<Toplevel> toplevels = source_.toplevels();
    std::erase_if(askedOnce_, [&](std::uint64_t one) {
        return std::ranges::find(toplevels, one, &Toplevel::window) == toplevels.end();
    });
    const auto found = std::ranges::find(toplevels, window, &Toplevel::window);
    if (found == toplevels.end() || (found->process > 0 && workspace_.hasJob(found->process)))
        return false;
    if (found->canBePinged || askedOnce_.insert(window).second)
        source_.askToClose(window);
    return true;
}

void LinuxWindows::askWithoutWindows(ProcessId process) {
    if (surroundings_.askWithoutWindows && !workspace_.hasJob(process))
        surroundings_.askWithoutWindows(process);
}

std::set<ProcessId> LinuxWindows::trayOwners() {
    return surroundings_.trayOwners ? surroundings_.trayOwners() : std::set<ProcessId>();
}

} // namespace velmorquit
