#include "Services/SessionEnd/OpenWork.h"

#include <algorithm>
#include <string>
#include <utility>

namespace velmorquit {

namespace {

bool isHeldBy(const Inhibitor& inhibitor, const WindowOwner& owner) {
    return inhibitor.process == owner.process ||
           (!inhibitor.application.empty() &&
            (inhibitor.application == owner.application || inhibitor.application == owner.name));
}

} // namespace

OpenWork::OpenWork(Windows& windows, const Processes& processes)
    : windows_(windows), processes_(processes) {
    note();
    watching_ = windows_.observe([this] { note(); });
}

/// Updates the programs from the windows on the display.
void OpenWork::note() {
    for (auto& [id, program] : programs_)
        program.windows.clear();
    for (Program& stranger : strangers_)
        stranger.windows.clear();
    for (const OpenWindow& window : windows_.open())
        noteWindow(window);
    std::erase_if(programs_, [this](const auto& entry) {
        return entry.second.windows.empty() && !isSame(entry.first, entry.second);
    });
    std::erase_if(strangers_, [](const Program& stranger) { return stranger.windows.empty(); });
}

void OpenWork::noteWindow(const OpenWindow& window) {
    const ProcessId id = window.owner.process;
    const auto start = id > 0 ? processes_.startOf(id) : std::nullopt;
    if (start) {
        Program& program = programs_[id];
        if (program.start != *start)
            program = {.owner = window.owner, .start = *start};
        program.owner = window.owner;
        program.windows.push_back(window);
        return;
    }
    auto stranger = std::ranges::find_if(
        strangers_, [&](const Program& known) { return known.owner.name == window.owner.name; });
    if (stranger == strangers_.end())
        stranger = strangers_.insert(stranger, Program{.owner = window.owner});
    stranger->windows.push_back(window);
}

/// The id of a process that has ended may belong to another one by now.
bool OpenWork::isSame(ProcessId id, const Program& program) const {
    return processes_.startOf(id) == program.start;
}

OpenWork::Found OpenWork::ask(Uptime now, LoginRequest request, const SessionAccount& account) {
    note();
    askAll(now);
    measure(now);
    Found found;
    for (const auto& [id, program] : programs_) {
        if (!program.windows.empty())
            found.obstacles.push_back(obstacleOf(program));
    }
    for (const Program& stranger : strangers_)
        found.obstacles.push_back(obstacleOf(stranger));
    addWindowless(found, now, account);
    for (const Inhibitor& inhibitor : account.inhibitors) {
        const bool isInTheWay =
            inhibitor.against == Inhibitor::Against::sessionEnd ||
            (inhibitor.against == Inhibitor::Against::shutdown && request != LoginRequest::logOut);
        if (isInTheWay)
            found.obstacles.push_back({.kind = EndObstacle::Kind::inhibitor,
                                       .name = inhibitor.who,
                                       .detail = inhibitor.why,
                                       .process = inhibitor.process});
    }
    return found;
}

// A program may go, and its entry with it, while it is being asked: hence the list of ids.
void OpenWork::askAll(Uptime now) {
    std::vector<ProcessId> ids;
    for (const auto& [id, program] : programs_)
        ids.push_back(id);
    for (const ProcessId id : ids) {
        const auto found = programs_.find(id);
        if (found == programs_.end())
            continue;
        if (found->second.windows.empty())
            askWindowless(id, found->second, now);
        else
            askWindows(found->second);
    }
    askStrangers();
}

// A program that shows a question is left alone: some take a second request as an answer to it. One
// that shows a window again after being without counts as newly opened.
void OpenWork::askWindows(Program& program) {
    const bool isAnew = !program.wasAsked || program.wasAskedWithoutWindows;
    program.windowlessSince.reset();
    program.meter = {};
    if (!isAnew || std::ranges::any_of(program.windows, &OpenWindow::isQuestion))
        return;
    program.wasAsked = true;
    program.wasAskedWithoutWindows = false;
    std::vector<std::uint64_t> asked;
    for (const OpenWindow& window : program.windows) {
        if (window.canBeAsked)
            asked.push_back(window.id);
    }
    bool isRefused = false;
    const ProcessId id = program.owner.process;
    for (const std::uint64_t window : asked)
        isRefused |= !windows_.askToClose(window);
    if (const auto found = programs_.find(id); found != programs_.end())
        found->second.couldNotBeAsked = isRefused;
}

void OpenWork::askStrangers() {
    std::vector<std::uint64_t> asked;
    for (Program& stranger : strangers_) {
        if (std::ranges::any_of(stranger.windows, &OpenWindow::isQuestion))
            continue;
        for (const OpenWindow& window : stranger.windows) {
            if (window.canBeAsked && stranger.askedWindows.insert(window.id).second)
                asked.push_back(window.id);
        }
    }
    for (const std::uint64_t window : asked)
        windows_.askToClose(window);
}

void OpenWork::askWindowless(ProcessId id, Program& program, Uptime now) {
    if (!program.windowlessSince)
        program.windowlessSince = now;
    const bool isTime = now - *program.windowlessSince >= windowlessPatience;
    if (!program.wasAsked || program.wasAskedWithoutWindows || !isTime)
        return;
    program.wasAskedWithoutWindows = true;
    windows_.askWithoutWindows(id);
}

/// Looks at the work of programs without windows that are due for a look.
void OpenWork::measure(Uptime now) {
    std::set<ProcessId> due;
    for (const auto& [id, program] : programs_) {
        if (program.windows.empty() && !program.owner.isBackground && program.meter.isLookDue(now))
            due.insert(id);
    }
    if (due.empty())
        return;
    for (const auto& [id, work] : processes_.work(due)) {
        Program& program = programs_.at(id);
        if (program.start == work.start)
            program.meter.look(now, work);
    }
}

EndObstacle OpenWork::obstacleOf(const Program& program) {
    using Kind = EndObstacle::Kind;
    const auto isAny = [&](bool OpenWindow::* quality) {
        return std::ranges::any_of(program.windows, quality);
    };
    const bool canBeAsked = isAny(&OpenWindow::canBeAsked) && !program.couldNotBeAsked;
    EndObstacle obstacle{.kind = isAny(&OpenWindow::isQuestion) ? Kind::question
                                 : canBeAsked                   ? Kind::window
                                                                : Kind::unaskable,
                         .name = program.owner.name,
                         .process = program.owner.process};
    for (const OpenWindow& window : program.windows)
        obstacle.windows.push_back(window.id);
    return obstacle;
}

void OpenWork::addWindowless(Found& found, Uptime now, const SessionAccount& account) const {
    for (const auto& [id, program] : programs_) {
        if (!program.windows.empty())
            continue;
        const auto inhibitor =
            std::ranges::find_if(account.inhibitors, [&](const Inhibitor& candidate) {
                return candidate.against == Inhibitor::Against::sleep &&
                       isHeldBy(candidate, program.owner);
            });
        const bool isInhibiting = inhibitor != account.inhibitors.end();
        if (isInhibiting || program.meter.isWorking())
            found.obstacles.push_back({.kind = EndObstacle::Kind::work,
                                       .name = program.owner.name,
                                       .detail = isInhibiting ? inhibitor->why : std::string(),
                                       .process = id});
        else if (!program.owner.isBackground && !program.meter.isQuiet(now))
            found.isSomebodyEnding = true;
    }
}

void OpenWork::lookForMentions(Uptime now) {
    using Kind = EndObstacle::Kind;
    mentionedAt_ = now;
    mentions_.clear();
    const std::set<ProcessId> inTray = windows_.trayOwners();
    for (const auto& [id, program] : programs_) {
        const bool wentByItself = program.windows.empty() && !program.wasAsked;
        if (wentByItself && !program.owner.isBackground && inTray.contains(id))
            mentions_.push_back({Kind::tray, program.owner.name, {}, id});
    }
    for (const WindowlessJob& job : processes_.windowlessJobs())
        mentions_.push_back({Kind::job, job.name, {}, job.process});
}

void OpenWork::askAnew() {
    for (auto& [id, program] : programs_) {
        if (!program.windows.empty())
            program.wasAsked = false;
    }
    for (Program& stranger : strangers_)
        stranger.askedWindows.clear();
}

void OpenWork::forget() {
    for (auto& [id, program] : programs_)
        program = {.owner = program.owner, .start = program.start, .windows = program.windows};
    for (Program& stranger : strangers_)
        stranger.askedWindows.clear();
    mentionedAt_.reset();
}

} // namespace velmorquit
