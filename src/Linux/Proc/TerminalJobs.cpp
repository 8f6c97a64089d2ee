#include "Linux/Proc/TerminalJobs.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velmorquit {

namespace {

bool isShell(std::string_view name) {
    static constexpr std::array<std::string_view, 13> shells{
        "sh",   "bash", "dash", "zsh",  "fish", "ksh",    "mksh",
        "tcsh", "csh",  "ash",  "yash", "nu",   "busybox"};
    return std::ranges::find(shells, name) != shells.end();
}

bool takesAnotherArgument(std::string_view option) {
    static constexpr std::array<std::string_view, 6> options{
        "--rcfile", "--init-file", "--init-command", "-C", "-o", "-O"};
    return std::ranges::find(options, option) != options.end();
}

/// What a shell was started for.
struct ShellTask {
    bool isPrompt = true;
    std::string script; ///< its path; empty for a command given in words
};

/// A shell that was given a command or a script is a job like any other.
ShellTask shellTask(const std::vector<std::string>& arguments) {
    for (std::size_t next = 1; next < arguments.size(); ++next) {
        const std::string_view argument = arguments[next];
        if (!argument.starts_with('-'))
            return {.isPrompt = false, .script = arguments[next]};
        if (!argument.starts_with("--") && argument.find('c') != std::string_view::npos)
            return {.isPrompt = false, .script = {}};
        if (takesAnotherArgument(argument))
            ++next;
    }
    return {};
}

bool isShellAtItsPrompt(const ProcessStat& process, const ProcessFacts& facts) {
    return isShell(facts.executable(process.id)) && shellTask(facts.arguments(process.id)).isPrompt;
}

} // namespace

bool isOurProgram(std::string_view executable) {
    return executable == "velmorctl" || executable == "velmorquit";
}

std::optional<ProcessId> terminalJob(const ProcessStat& leader,
                                     const std::vector<ProcessStat>& table,
                                     const ProcessFacts& facts) {
    enum Rank { foremost, inFront, inPlaceOfShell, behind, none };
    Rank best = none;
    ProcessId job = leader.id;
    // The job in the foreground may be one that the system hides, since it runs as another user.
    bool isForegroundHidden = leader.foreground > 0;
    for (const ProcessStat& process : table) {
        if (process.session != leader.session)
            continue;
        const bool isInFront = process.group == leader.foreground;
        if (isInFront)
            isForegroundHidden = false;
        if (process.hasEnded || isOurProgram(facts.executable(process.id)))
            continue;
        const bool isStopped = process.state == 'T' || process.state == 't';
        Rank rank = none;
        if (process.id == leader.id && isShellAtItsPrompt(process, facts))
            continue;
        if (isInFront)
            rank = process.id == leader.foreground ? foremost : inFront;
        else if (process.id == leader.id)
            rank = inPlaceOfShell;
        else if (isStopped || facts.ownsWindows(process.id))
            rank = behind;
        if (rank < best) {
            best = rank;
            job = process.id;
        }
    }
    return best != none || isForegroundHidden ? std::optional(job) : std::nullopt;
}

std::string jobName(ProcessId job, const std::vector<ProcessStat>& table,
                    const ProcessFacts& facts) {
    const auto own = std::ranges::find(table, job, &ProcessStat::id);
    if (own == table.end())
        return {};
    std::string executable = facts.executable(job);
    if (executable.empty())
        return own->command;
    if (!isShell(executable))
        return executable;
    const std::string script = shellTask(facts.arguments(job)).script;
    if (!script.empty())
        return script.substr(script.rfind('/') + 1);
    // Commands in brackets: what runs in there says more than another "bash".
    for (const ProcessStat& process : table) {
        if (process.group != own->group || process.session != own->session || process.hasEnded)
            continue;
        std::string inside = facts.executable(process.id);
        if (!inside.empty() && !isShell(inside) && !isOurProgram(inside))
            return inside;
    }
    return executable;
}

bool hasTerminalJob(ProcessId application, const std::vector<ProcessStat>& table,
                    const ProcessFacts& facts) {
    const auto own = std::ranges::find(table, application, &ProcessStat::id);
    const int ownTerminal = own == table.end() ? 0 : own->terminal;
    std::vector<ProcessId> family{application};
    for (std::size_t next = 0; next < family.size(); ++next) {
        for (const ProcessStat& process : table) {
            if (process.parent != family[next] || process.id == application)
                continue;
            const bool leadsTerminal = process.session == process.id && process.terminal != 0 &&
                                       process.terminal != ownTerminal;
            if (leadsTerminal && terminalJob(process, table, facts))
                return true;
            // A terminal that was opened by this application stands on its own feet.
            if (!leadsTerminal && !facts.ownsWindows(process.id))
                family.push_back(process.id);
        }
    }
    return false;
}

} // namespace velmorquit
