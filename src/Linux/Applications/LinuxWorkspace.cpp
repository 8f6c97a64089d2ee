#include "Linux/Applications/LinuxWorkspace.h"

#include "Linux/Proc/TerminalJobs.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace velmorquit {

/// The windows of the applications, lent to these.
class LinuxWorkspace::Windows final : public ApplicationWindows {
public:
    Windows(MainLoop& loop, ToplevelSource& source) : loop_(loop), source_(source) {}

    bool askToClose(ProcessId process) override {
        if (hasJob(process))
            return false;
        bool isAsked = false;
        for (const Toplevel& toplevel : source_.toplevels()) {
            if (toplevel.process != process || toplevel.isDialogOfAnother ||
                !toplevel.canBeAskedToClose)
                continue;
            source_.askToClose(toplevel.window);
            isAsked = true;
        }
        return isAsked;
    }

    bool bringToFront(ProcessId process) override {
        std::uint64_t last = 0;
        for (const Toplevel& toplevel : source_.toplevels()) {
            if (toplevel.process == process)
                last = toplevel.window;
        }
        if (last != 0)
            source_.bringToFront(last);
        return last != 0;
    }

private:
    /// A run asks all applications at one go: they share one look at the processes.
    static constexpr Duration sharedLook = 100ms;

    bool hasJob(ProcessId process) {
        const Uptime now = loop_.uptime();
        if (!lookedAt_ || now - *lookedAt_ > sharedLook) {
            table_ = readProcessTable();
            owners_.clear();
            for (const Toplevel& toplevel : source_.toplevels())
                owners_.insert(toplevel.process);
            lookedAt_ = now;
        }
        return hasTerminalJob(
            process, table_,
            {.executable = executableName,
             .arguments = processArguments,
             .ownsWindows = [this](ProcessId id) { return owners_.contains(id); }});
    }

    MainLoop& loop_;
    ToplevelSource& source_;
    std::vector<ProcessStat> table_;
    std::set<ProcessId> owners_;
    std::optional<Uptime> lookedAt_;
};

LinuxWorkspace::LinuxWorkspace(MainLoop& loop, SystemLog& log, ToplevelSource& source)
    : loop_(loop), log_(log), source_(source), windows_(std::make_shared<Windows>(loop, source)) {
    readToplevels();
    watching_ = source_.observe([this] { update(); });
}

LinuxWorkspace::~LinuxWorkspace() = default;

std::vector<std::shared_ptr<RunningApplication>> LinuxWorkspace::runningApplications() {
    untold_.merge(readToplevels());
    if (!untold_.empty() && !telling_.isSet())
        telling_ = loop_.after(Duration::zero(), [this] { tellUntold(); });
    std::vector<std::shared_ptr<RunningApplication>> running;
    for (const Member& member : members_) {
        if (!member.application->isTerminated())
            running.push_back(member.application);
    }
    return running;
}

std::shared_ptr<RunningApplication> LinuxWorkspace::frontmostApplication() const {
    const auto frontmost = frontmost_.lock();
    return frontmost && !frontmost->isTerminated() ? frontmost : nullptr;
}

std::vector<std::string> LinuxWorkspace::defaultExclusions() const {
    return {"caja",
            "caja-browser",
            "io.elementary.files",
            "nemo",
            "org.gnome.Nautilus",
            "thunar",
            "org.kde.dolphin",
            "pcmanfm",
            "pcmanfm-qt"};
}

void LinuxWorkspace::update() {
    for (const WorkspaceEvent event : readToplevels())
        tell(event);
}

void LinuxWorkspace::tellUntold() {
    telling_.reset();
    for (const WorkspaceEvent event : std::exchange(untold_, {}))
        tell(event);
}

/// Brings the applications in line with the windows, and says what has changed.
std::set<WorkspaceEvent> LinuxWorkspace::readToplevels() {
    std::set<WorkspaceEvent> events;
    const std::vector<Toplevel> toplevels = source_.toplevels();
    std::set<ProcessId> owners;
    for (const Toplevel& toplevel : toplevels) {
        if (toplevel.process == ::getpid())
            continue;
        if (admit(toplevel))
            events.insert(WorkspaceEvent::launched);
        const Member* member = known(toplevel.process);
        if (!member)
            continue;
        owners.insert(toplevel.process);
        if (toplevel.window == source_.activeWindow() && frontmost_.lock() != member->application) {
            frontmost_ = member->application;
            events.insert(WorkspaceEvent::activated);
        }
    }
    for (const Member& member : members_) {
        const auto policy = owners.contains(member.application->processId())
                                ? ActivationPolicy::regular
                                : ActivationPolicy::accessory;
        if (policy != member.application->activationPolicy())
            events.insert(WorkspaceEvent::policyChanged);
        member.application->setPolicy(policy);
    }
    return events;
}

/// Takes note of a window; true when it is the first one of its process.
bool LinuxWorkspace::admit(const Toplevel& toplevel) {
    const ProcessId id = toplevel.process;
    if (Member* member = known(id)) {
        if (member->shown.insert(toplevel.identity).second)
            member->application->addIdentity(entries_.identify(toplevel.identity, id));
        return false;
    }
    auto process = ProcessHandle::open(id, [this, alive = std::weak_ptr(windows_)] {
        if (!alive.expired())
            removeEndedLater();
    });
    // The window's own process may have ended since it was listed, and its id may be another's now.
    if (!process || !source_.belongsTo(toplevel.window, id))
        return false;
    members_.push_back({std::make_shared<LinuxApplication>(
                            std::move(process), entries_.identify(toplevel.identity, id),
                            LinuxApplication::Surroundings{loop_, log_, windows_}),
                        {toplevel.identity}});
    return true;
}

/// In a later turn: what has ended is told by an object that goes with it.
void LinuxWorkspace::removeEndedLater() {
    removing_ = loop_.after(Duration::zero(), [this] { removeEnded(); });
}

void LinuxWorkspace::removeEnded() {
    std::erase_if(members_,
                  [](const Member& member) { return member.application->isTerminated(); });
    tell(WorkspaceEvent::terminated);
}

/// An id whose process has ended may belong to another one by now.
LinuxWorkspace::Member* LinuxWorkspace::known(ProcessId id) {
    const auto found = std::ranges::find_if(members_, [id](const Member& member) {
        return member.application->processId() == id && !member.application->isTerminated();
    });
    return found == members_.end() ? nullptr : &*found;
}

} // namespace velmorquit
