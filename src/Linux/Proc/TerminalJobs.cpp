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

bool isOurs(std::string_view name) { return name == "velmorctl" || name == "velmorquit"; }

bool takesAnotherArgument(std::string_view option) {
    static constexpr std::array<std::string_view, 6> options{
        "--rcfile", "--init-file", "--init-command", "-C", "-o", "-O"};
    return std::ranges::find(options, option) != options.end();
}

/// A shell that was given a command or a script is a job like any other.
bool isShellAtItsPrompt(const ProcessStat& process, const ProcessFacts& facts) {
    if (!isShell(facts.executable(process.id)))
        return false;
    const auto arguments = facts.arguments(process.id);
    for (std::size_t next = 1; next < arguments.size(); ++next) {
        const std::string_view argument = arguments[next];
        const bool isOption = argument.starts_with('-');
        const bool givesCommand =
            !argument.starts_with("--") && argument.find('c') != std::string_view::npos;
        if (!isOption || givesCommand)
            return false;
        if (takesAnotherArgument(argument))
            ++next;
    }
    return true;
}

bool isAtWork(const ProcessStat& leader, const std::vector<ProcessStat>& table,
              const ProcessFacts& facts) {
    // The job in the foreground may be one that the system hides, since it runs as another user.
    bool isForegroundHidden = leader.foreground > 0;
    for (const ProcessStat& process : table) {
        if (process.session != leader.session)
            continue;
        if (process.group == leader.foreground)
            isForegroundHidden = false;
        if (isOurs(facts.executable(process.id)))
            continue;
        if (process.id == leader.id) {
            if (!isShellAtItsPrompt(process, facts))
                return true;
            continue;
        }
        const bool isStopped = process.state == 'T' || process.state == 't';
        if (process.group == leader.foreground || isStopped || facts.ownsWindows(process.id))
            return true;
    }
    return isForegroundHidden;
}

} // namespace

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
            if (leadsTerminal && isAtWork(process, table, facts))
                return true;
            // A terminal that was opened by this application stands on its own feet.
            if (!leadsTerminal && !facts.ownsWindows(process.id))
                family.push_back(process.id);
        }
    }
    return false;
}

} // namespace velmorquit
