#include "Linux/Proc/ProcProcesses.h"

#include "Linux/Proc/ProcText.h"
#include "Linux/Text/Utf8.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

namespace velmorquit {

namespace {

using ProcText::numberAt;

Duration durationOf(std::uint64_t ticks) {
    static const auto perSecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    return std::chrono::seconds(ticks / perSecond) +
           std::chrono::nanoseconds(ticks % perSecond * 1'000'000'000 / perSecond);
}

/// A program that waits for a login has a terminal as well.
bool waitsForLogin(const ProcessStat& process) {
    static constexpr std::array<std::string_view, 4> programs{"login", "agetty", "getty",
                                                              "mingetty"};
    return std::ranges::find(programs, process.command) != programs.end();
}

/// Display managers reserve a terminal for what they start: a display server, and a session manager
/// whose programs run elsewhere.
bool runsSession(std::string_view command) {
    static constexpr std::array<std::string_view, 16> beginnings{
        "Xorg",         "Xwayland",      "gdm-",          "sddm",
        "lightdm",      "startplasma",   "gnome-session", "xfce4-session",
        "mate-session", "cinnamon-sess", "lxqt-session",  "lxsession",
        "gnome-shell",  "kwin_",         "sway",          "labwc"};
    return command == "X" || std::ranges::any_of(beginnings, [&](std::string_view beginning) {
               return command.starts_with(beginning);
           });
}

} // namespace

/// All processes at one moment.
struct ProcProcesses::Look {
    std::vector<ProcessStat> table;
    ProcessFacts facts;
    std::set<ProcessId> windowOwners;
    std::set<ProcessId> trayOwners;
    std::set<ProcessId> desktop;

    [[nodiscard]] const ProcessStat* find(ProcessId id) const {
        const auto found = std::ranges::find(table, id, &ProcessStat::id);
        return found == table.end() ? nullptr : &*found;
    }

    [[nodiscard]] bool isShown(const ProcessStat& process) const {
        return windowOwners.contains(process.id) || desktop.contains(process.id);
    }

    [[nodiscard]] bool isFromAWindow(const ProcessStat& process) const {
        const ProcessStat* ancestor = find(process.parent);
        // Limited to the number of processes: a table read while processes change may contain a
        // cycle.
        for (std::size_t steps = 0; ancestor && steps < table.size(); ++steps) {
            if (windowOwners.contains(ancestor->id))
                return true;
            ancestor = find(ancestor->parent);
        }
        return false;
    }
};

ProcProcesses::ProcProcesses(Display display, const std::string& proc, uid_t user)
    : display_(std::move(display)), proc_(proc), user_(user) {}

std::optional<std::uint64_t> ProcProcesses::startOf(ProcessId process) const {
    const auto stat = parseProcessStat(proc_.read(process, "stat"));
    return stat && !stat->hasEnded ? std::optional(stat->startTime) : std::nullopt;
}

std::map<ProcessId, ProcessWork> ProcProcesses::work(const std::set<ProcessId>& ids) const {
    const std::vector<ProcessStat> table = readProcessTable(proc_);
    std::multimap<ProcessId, const ProcessStat*> children;
    for (const ProcessStat& process : table)
        children.emplace(process.parent, &process);
    // Processes that count by themselves must not be added to the work of others.
    std::set<ProcessId> counted = display_.windowOwners();
    counted.insert(ids.begin(), ids.end());
    std::map<ProcessId, ProcessWork> works;
    for (const ProcessStat& root : table) {
        if (!ids.contains(root.id) || root.hasEnded)
            continue;
        ProcessWork& work = works[root.id];
        work.start = root.startTime;
        std::uint64_t ticks = 0;
        std::vector<const ProcessStat*> family{&root};
        for (std::size_t next = 0; next < family.size(); ++next) {
            ticks += family[next]->processorTime;
            work.written += writtenBy(family[next]->id);
            const auto [begin, end] = children.equal_range(family[next]->id);
            for (auto child = begin; child != end; ++child) {
                if (child->second->session == root.session &&
                    counted.insert(child->second->id).second)
                    family.push_back(child->second);
            }
        }
        work.processorTime = durationOf(ticks);
    }
    return works;
}

std::vector<WindowlessJob> ProcProcesses::windowlessJobs() const {
    Look look{.table = readProcessTable(proc_),
              .facts = {},
              .windowOwners = display_.windowOwners(),
              .trayOwners = display_.trayOwners(),
              .desktop = display_.desktopProcesses()};
    look.facts = {.executable = [this](ProcessId id) { return executableName(id, proc_); },
                  .arguments = [this](ProcessId id) { return processArguments(id, proc_); },
                  .ownsWindows = [&look](ProcessId id) { return look.windowOwners.contains(id); },
                  .ignoresHangup = [this](ProcessId id) { return ignoresHangup(id, proc_); }};
    std::vector<WindowlessJob> jobs;
    addTerminals(look, jobs);
    addOutliving(look, jobs);
    for (WindowlessJob& job : jobs)
        job.name = utf8(jobName(job.process, look.table, look.facts));
    return jobs;
}

void ProcProcesses::addTerminals(const Look& look, std::vector<WindowlessJob>& jobs) const {
    std::set<ProcessId> shownSessions;
    for (const ProcessStat& process : look.table) {
        if (look.isShown(process) || runsSession(process.command))
            shownSessions.insert(process.session);
    }
    for (const ProcessStat& leader : look.table) {
        if (leader.session != leader.id || leader.terminal == 0 || leader.hasEnded ||
            shownSessions.contains(leader.id) || waitsForLogin(leader) || !isOwn(leader.id) ||
            look.isFromAWindow(leader))
            continue;
        if (const auto job = terminalJob(leader, look.table, look.facts, Loss::session))
            jobs.push_back({.process = *job, .name = {}});
    }
}

void ProcProcesses::addOutliving(const Look& look, std::vector<WindowlessJob>& jobs) const {
    std::set<ProcessId> leaders;
    std::set<ProcessId> shownGroups;
    for (const ProcessStat& process : look.table) {
        if (process.session == process.id && !process.hasEnded)
            leaders.insert(process.id);
        if (look.isShown(process) || look.trayOwners.contains(process.id))
            shownGroups.insert(process.group);
    }
    // Kernel threads, and processes that entered a container from outside, have no session.
    const auto hasOutlived = [&](const ProcessStat& process) {
        return process.session > 0 && process.terminal == 0 && process.group != process.session &&
               !process.hasEnded && !leaders.contains(process.session) &&
               !shownGroups.contains(process.group);
    };
    std::map<ProcessId, std::size_t> placeOfGroup;
    for (const ProcessStat& process : look.table) {
        if (!hasOutlived(process) || isOurProgram(look.facts.executable(process.id)) ||
            !isOwn(process.id))
            continue;
        const auto [place, isFirst] = placeOfGroup.emplace(process.group, jobs.size());
        if (isFirst)
            jobs.push_back({.process = process.id, .name = {}});
        else if (process.id == process.group)
            jobs[place->second].process = process.id;
    }
}

// The folder's owner doesn't tell: that of a program which hides its memory belongs to root.
bool ProcProcesses::isOwn(ProcessId process) const {
    return numberAt(proc_.read(process, "status"), "Uid:") == std::uint64_t{user_};
}

std::uint64_t ProcProcesses::writtenBy(ProcessId process) const {
    return numberAt(proc_.read(process, "io"), "write_bytes:").value_or(0);
}

} // namespace velmorquit
