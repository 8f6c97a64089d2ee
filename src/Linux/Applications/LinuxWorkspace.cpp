#include "Linux/Applications/LinuxWorkspace.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

#include <unistd.h>

namespace velmorquit {

namespace {

/// A program has a handful of identities. One whose windows change theirs all the time must not
/// fill the memory with them.
constexpr std::size_t mostIdentities = 64;

bool isThere(ProcessId id) { return ::kill(id, 0) == 0 || errno == EPERM; }

} // namespace

LinuxWorkspace::LinuxWorkspace(MainLoop& loop, SystemLog& log, ToplevelSource& source,
                               const Surroundings& surroundings)
    : loop_(loop), log_(log), source_(source),
      windows_(std::make_shared<WorkspaceWindows>(loop, source, surroundings.withoutWindows)),
      launch_(surroundings.launch), hasAnotherDisplay_(surroundings.hasAnotherDisplay),
      proc_(surroundings.proc) {
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

Sight LinuxWorkspace::sight() {
    if (hasAnotherDisplay_ && hasAnotherDisplay_())
        return Sight::anotherDisplay;
    const Sight sight = source_.sight();
    return sight == Sight::all && lacksDescriptors_ ? Sight::incomplete : sight;
}

std::shared_ptr<const LinuxApplication> LinuxWorkspace::application(ProcessId id) const {
    const auto found = std::ranges::find_if(
        members_, [id](const Member& member) { return member.application->processId() == id; });
    return found == members_.end() ? nullptr : found->application;
}

std::shared_ptr<RunningApplication> LinuxWorkspace::frontmostApplication() const {
    const auto frontmost = frontmost_.lock();
    return frontmost && !frontmost->isTerminated() ? frontmost : nullptr;
}

std::shared_ptr<const Icon> LinuxWorkspace::icon(const std::string& path) const {
    return std::make_shared<Icon>(DesktopEntries::iconOf(path));
}

void LinuxWorkspace::open(const std::string& path) {
    if (!launch_)
        return;
    starts_.expect(path, source_.focusedWindow(), loop_.uptime());
    launch_(path);
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

void LinuxWorkspace::update() { observers_.tell(readToplevels()); }

void LinuxWorkspace::tellUntold() {
    telling_.reset();
    observers_.tell(std::exchange(untold_, {}));
}

/// Updates the applications from the windows, and returns the changes.
WorkspaceChanges LinuxWorkspace::readToplevels() {
    WorkspaceChanges changes;
    const std::vector<Toplevel> toplevels = source_.toplevels();
    std::set<ProcessId> owners;
    std::set<ProcessId> ownersOfAny;
    ProcessId focusedProcess = 0;
    lacksDescriptors_ = false;
    for (const Toplevel& toplevel : toplevels) {
        if (toplevel.window == source_.focusedWindow())
            focusedProcess = toplevel.process;
        if (toplevel.process <= 0 || toplevel.process == ::getpid())
            continue;
        if (toplevel.isOrdinary)
            admit(toplevel, changes);
        const Member* member = known(toplevel.process);
        if (!member)
            continue;
        member->application->noteWindow(toplevel.window);
        if (toplevel.isOrdinary)
            owners.insert(toplevel.process);
        ownersOfAny.insert(toplevel.process);
        if (toplevel.window == source_.activeWindow())
            frontmost_ = member->application;
    }
    for (const Member& member : members_)
        member.application->noteKeyboard(member.application->processId() == focusedProcess);
    keepInBackground(focusedProcess);
    changes.merge(updatePolicies(owners, ownersOfAny));
    noteFront(changes);
    return changes;
}

/// While a window that belongs to no application is active, the frontmost application stays.
void LinuxWorkspace::noteFront(WorkspaceChanges& changes) {
    const auto frontmost = frontmostApplication();
    const ProcessId front = frontmost ? frontmost->processId() : 0;
    if (std::exchange(front_, front) != front)
        changes.insert({WorkspaceEvent::activated, front});
}

/// Done in a later turn, since listing the running applications must have no side effects.
void LinuxWorkspace::keepInBackground(ProcessId focusedProcess) {
    const auto window =
        starts_.windowToRestore(source_.focusedWindow(), focusedProcess, loop_.uptime());
    if (window != 0)
        restoring_ =
            loop_.after(Duration::zero(), [this, window] { source_.bringToFront(window); });
}

/// `owners` have ordinary windows, `ownersOfAny` these or dialogs.
WorkspaceChanges LinuxWorkspace::updatePolicies(const std::set<ProcessId>& owners,
                                                const std::set<ProcessId>& ownersOfAny) {
    WorkspaceChanges changes;
    for (Member& member : members_) {
        LinuxApplication& application = *member.application;
        const ProcessId id = application.processId();
        const bool isRegular = owners.contains(id) && !application.isHidden() &&
                               !source_.shellProcesses().contains(id);
        const auto policy = isRegular ? ActivationPolicy::regular : ActivationPolicy::accessory;
        if (policy != application.activationPolicy())
            changes.insert({WorkspaceEvent::policyChanged, id});
        application.setPolicy(policy);
        if (application.isService() && hasClosed(member, ownersOfAny.contains(id))) {
            application.leave();
            changes.insert({WorkspaceEvent::terminated, id});
        }
    }
    // Only services: the end of other members is reported by their processes.
    std::erase_if(members_, [](const Member& member) { return member.application->hasLeft(); });
    return changes;
}

/// Whether the last window closed a while ago: some hide one window before showing the next.
bool LinuxWorkspace::hasClosed(Member& member, bool hasWindows) {
    if (hasWindows || member.application->isTerminated()) {
        member.windowlessSince.reset();
        return false;
    }
    const Uptime now = loop_.uptime();
    if (!member.windowlessSince) {
        member.windowlessSince = now;
        lookingAgain_ = loop_.after(serviceDelay, [this] { update(); });
    }
    return now - *member.windowlessSince >= serviceDelay;
}

std::set<ProcessId> LinuxWorkspace::windowOwners() {
    std::set<ProcessId> owners;
    for (const Toplevel& toplevel : source_.toplevels())
        owners.insert(toplevel.process);
    return owners;
}

/// Takes note of an open window, and of its process if that is new.
void LinuxWorkspace::admit(const Toplevel& toplevel, WorkspaceChanges& changes) {
    const ProcessId id = toplevel.process;
    if (Member* member = known(id)) {
        if (member->settling.isSet() && improve(*member, toplevel))
            changes.insert({WorkspaceEvent::policyChanged, id});
        if (member->shown.contains(toplevel.identity))
            return;
        // Beyond the limit only installed programs count, which are few: an exclusion may name the
        // last one that a browser shows.
        const Identity another = entries_.identify(toplevel.identity, id);
        if (member->shown.size() < mostIdentities)
            member->shown.insert(toplevel.identity);
        else if (another.basis != Identity::Basis::entry)
            return;
        member->application->addIdentity(another);
        return;
    }
    auto process = ProcessHandle::open(id, [this, alive = std::weak_ptr(windows_)] {
        if (!alive.expired())
            removeEndedLater();
    });
    // The window's process may have ended since it was listed, and its id may be reused by now.
    if (!process)
        lacksDescriptors_ |= isThere(id);
    if (!process || !source_.belongsTo(toplevel.window, id))
        return;
    const ProcessOrigin origin = originOf(id, proc_, windowOwners());
    const auto title = [&] { return source_.title(toplevel.window); };
    const Identity identity =
        entries_.identify(toplevel.identity, id,
                          {.started = origin.entries, .program = origin.program, .title = title});
    const bool needsPicture = identity.iconName.empty() && identity.iconFile.empty();
    auto application =
        std::make_shared<LinuxApplication>(std::move(process), identity, origin,
                                           needsPicture ? source_.icon(toplevel.window) : Image(),
                                           LinuxApplication::Surroundings{loop_, log_, windows_});
    starts_.noteAppearance(identity.path, id, loop_.uptime());
    // The window's own statement counts besides the entry that its process was started from.
    const Identity stated = entries_.identify(toplevel.identity, id);
    if (stated.basis == Identity::Basis::entry)
        application->addIdentity(stated);
    Member member{.application = std::move(application), .shown = {toplevel.identity}};
    if (!member.application->isIdentitySettled()) {
        member.program = origin.program;
        member.lookedUp.emplace(toplevel.identity, origin.entries);
        member.settling = loop_.after(identityDelay, [this, id] { settle(id); });
    }
    members_.push_back(std::move(member));
    changes.insert({WorkspaceEvent::launched, id});
}

/// Whether the window and the unit now give a better identity.
bool LinuxWorkspace::improve(Member& member, const Toplevel& toplevel) {
    auto entries = entriesOf(toplevel.process, proc_, windowOwners());
    if (member.lookedUp.size() >= mostIdentities ||
        !member.lookedUp.emplace(toplevel.identity, entries).second)
        return false;
    LinuxApplication& application = *member.application;
    const Identity identity =
        entries_.identify(toplevel.identity, toplevel.process,
                          {.started = std::move(entries), .program = member.program, .title = {}});
    // The title is read once more at the end: until then, makeshift identities are equally good.
    if (identity.basis <= application.basis() || !application.improve(identity))
        return false;
    starts_.noteAppearance(identity.path, toplevel.process, loop_.uptime());
    if (application.isIdentitySettled())
        member.settling.reset();
    return true;
}

/// The last look at an application that has no entry yet.
void LinuxWorkspace::settle(ProcessId id) {
    WorkspaceChanges changes = readToplevels();
    Member* member = known(id);
    if (member && member->settling.isSet()) {
        if (nameByTitle(*member))
            changes.insert({WorkspaceEvent::policyChanged, id});
        member->application->settle();
        member->settling.reset();
    }
    observers_.tell(changes);
}

/// Titles appear late and change; this name is final.
bool LinuxWorkspace::nameByTitle(Member& member) {
    LinuxApplication& application = *member.application;
    if (application.basis() != Identity::Basis::makeshift)
        return false;
    const std::vector<Toplevel> toplevels = source_.toplevels();
    const auto found = std::ranges::find_if(toplevels, [&](const Toplevel& toplevel) {
        return toplevel.isOrdinary && toplevel.process == application.processId();
    });
    if (found == toplevels.end())
        return false;
    const auto title = [&] { return source_.title(found->window); };
    const Identity identity =
        entries_.identify(found->identity, found->process,
                          {.started = {}, .program = member.program, .title = title});
    // It has no id when the title adds nothing to what is known.
    return identity.id && application.improve(identity);
}

/// In a later turn: the end is reported by an object that is removed with the application.
void LinuxWorkspace::removeEndedLater() {
    removing_ = loop_.after(Duration::zero(), [this] { removeEnded(); });
}

void LinuxWorkspace::removeEnded() {
    WorkspaceChanges changes;
    std::erase_if(members_, [&](const Member& member) {
        const LinuxApplication& application = *member.application;
        if (application.isTerminated())
            changes.insert({WorkspaceEvent::terminated, application.processId()});
        return application.isTerminated();
    });
    noteFront(changes);
    observers_.tell(changes);
}

/// The id of a process that has ended may belong to another one by now.
LinuxWorkspace::Member* LinuxWorkspace::known(ProcessId id) {
    const auto found = std::ranges::find_if(members_, [id](const Member& member) {
        return member.application->processId() == id && !member.application->isTerminated();
    });
    return found == members_.end() ? nullptr : &*found;
}

} // namespace velmorquit
