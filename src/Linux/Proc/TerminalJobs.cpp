#include "Linux/Proc/TerminalJobs.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <unistd.h>

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

/// The purpose of a shell.
struct ShellTask {
    bool isPrompt = true;
    std::string script; ///< its path; empty for a command on the command line
};

/// A shell that was given a command or a script counts as a job.
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

/// A client only shows what a server keeps, which has no terminal. The executable of a program that
/// runs with a group's privileges can't be read; only its name is known.
bool isMultiplexer(const ProcessStat& process, const std::string& executable) {
    static constexpr std::array<std::string_view, 8> names{
        "tmux", "tmux: client", "tmux: server", "screen", "SCREEN", "zellij", "dtach", "abduco"};
    return std::ranges::find(names, executable.empty() ? process.command : executable) !=
           names.end();
}

/// A job that a shell would take along. Helpers of a prompt start right after the shell; processes
/// left behind by a script are no jobs of the shell, which doesn't know them.
bool isBackgroundJob(const ProcessStat& process, const std::vector<ProcessStat>& table,
                     const ProcessFacts& facts) {
    static const auto settling = 2 * static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    const auto shell = std::ranges::find(table, process.parent, &ProcessStat::id);
    return shell != table.end() && shell->session == process.session &&
           shell->group != process.group && process.startTime > shell->startTime + settling &&
           isShellAtItsPrompt(*shell, facts);
}

/// The leaders of the sessions in an application's terminals.
std::vector<const ProcessStat*> terminalsOf(ProcessId application,
                                            const std::vector<ProcessStat>& table,
                                            const ProcessFacts& facts) {
    const auto own = std::ranges::find(table, application, &ProcessStat::id);
    const int ownTerminal = own == table.end() ? 0 : own->terminal;
    std::vector<const ProcessStat*> leaders;
    std::vector<ProcessId> family{application};
    for (std::size_t next = 0; next < family.size(); ++next) {
        for (const ProcessStat& process : table) {
            if (process.parent != family[next] || process.id == application)
                continue;
            if (process.session == process.id && process.terminal != 0 &&
                process.terminal != ownTerminal)
                leaders.push_back(&process);
            // A terminal that this application has opened counts by itself.
            else if (!facts.ownsWindows(process.id))
                family.push_back(process.id);
        }
    }
    return leaders;
}

} // namespace

bool isOurProgram(std::string_view executable) {
    return executable == "velmorctl" || executable == "velmorquit";
}

std::optional<ProcessId> terminalJob(const ProcessStat& leader,
                                     const std::vector<ProcessStat>& table,
                                     const ProcessFacts& facts, Loss loss) {
    const bool isOfTerminal = loss == Loss::terminal;
    const auto wouldBeLost = [&](const ProcessStat& process) {
        if (process.state == 'T' || process.state == 't')
            return true;
        if (!facts.ownsWindows(process.id) &&
            !(isOfTerminal && isBackgroundJob(process, table, facts)))
            return false;
        return !isOfTerminal || !facts.ignoresHangup(process.id);
    };
    enum Rank { foremost, inFront, inPlaceOfShell, behind, none };
    Rank best = none;
    ProcessId job = leader.id;
    // The job in the foreground may be hidden by the system because another user runs it.
    bool isForegroundHidden = leader.foreground > 0;
    for (const ProcessStat& process : table) {
        if (process.session != leader.session)
            continue;
        const bool isInFront = process.group == leader.foreground;
        if (isInFront)
            isForegroundHidden = false;
        const std::string executable = facts.executable(process.id);
        if (process.hasEnded || isOurProgram(executable) ||
            (isOfTerminal && isMultiplexer(process, executable)))
            continue;
        Rank rank = none;
        if (process.id == leader.id && isShellAtItsPrompt(process, facts))
            continue;
        if (isInFront)
            rank = process.id == leader.foreground ? foremost : inFront;
        else if (process.id == leader.id)
            rank = inPlaceOfShell;
        else if (wouldBeLost(process))
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
    // A command in parentheses: the program inside says more than another "bash".
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
    return std::ranges::any_of(terminalsOf(application, table, facts), [&](const auto* leader) {
        return terminalJob(*leader, table, facts, Loss::terminal).has_value();
    });
}

bool hasTerminal(ProcessId application, const std::vector<ProcessStat>& table,
                 const ProcessFacts& facts) {
    return !terminalsOf(application, table, facts).empty();
}

bool terminalsRest(ProcessId application, const std::vector<ProcessStat>& table,
                   const ProcessFacts& facts) {
    const auto rests = [&](const ProcessStat* leader) {
        return leader->state == 'S' && std::ranges::none_of(table, [&](const ProcessStat& process) {
                   return process.session == leader->session &&
                          process.group == leader->foreground &&
                          facts.executable(process.id) == "velmorctl";
               });
    };
    return std::ranges::all_of(terminalsOf(application, table, facts), rests);
}

} // namespace velmorquit
