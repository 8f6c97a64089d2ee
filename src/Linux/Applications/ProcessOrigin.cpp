#include "Linux/Applications/ProcessOrigin.h"

#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcessStat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include <unistd.h>

namespace velmorquit {

namespace {

std::optional<ProcessStat> statOf(ProcessId process, const ProcDirectory& proc) {
    return parseProcessStat(proc.read(process, "stat"));
}

/// Whether the unit was made for another program, which then started this one. That program needn't
/// be the parent: launchers detach themselves from what they start.
bool isGuest(const ProcessStat& process, std::string_view unit, const ProcDirectory& proc,
             const std::set<ProcessId>& windowOwners) {
    return std::ranges::any_of(windowOwners, [&](ProcessId other) {
        if (other == process.id || applicationUnit(proc.read(other, "cgroup")) != unit)
            return false;
        const auto stat = statOf(other, proc);
        return stat && stat->startTime < process.startTime;
    });
}

/// Whether the unit was made for this process, or the bus started it. Services may start further
/// programs, which are then in their unit.
bool isMainProcess(const ProcessStat& process, const std::string& cgroup,
                   const ProcDirectory& proc) {
    auto ancestor = statOf(process.parent, proc);
    for (int depth = 0; depth < 2 && ancestor; ++depth) {
        if (ancestor->command.starts_with("dbus-"))
            return true;
        ancestor = statOf(ancestor->parent, proc);
    }
    return std::ranges::none_of(proc.processes(), [&](ProcessId other) {
        if (other == process.id || proc.read(other, "cgroup") != cgroup)
            return false;
        const auto stat = statOf(other, proc);
        return stat && stat->startTime < process.startTime;
    });
}

/// The system's start is known in seconds, a process's start in ticks after that.
std::optional<WallTime> startOf(const ProcessStat& process, const ProcDirectory& proc) {
    const std::string system = proc.read("stat");
    constexpr std::string_view field = "\nbtime ";
    const std::size_t at = system.find(field);
    if (at == std::string::npos)
        return std::nullopt;
    std::int64_t systemStart = 0;
    const char* digits = system.data() + at + field.size();
    if (std::from_chars(digits, system.data() + system.size(), systemStart).ec != std::errc{})
        return std::nullopt;
    const auto perSecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    const std::chrono::seconds seconds(process.startTime / perSecond);
    return WallTime(std::chrono::seconds(systemStart)) + seconds;
}

/// A program that offers services on the bus may have been started only for these.
bool isStartedAsService(const std::vector<std::string>& arguments) {
    return std::ranges::find(arguments, "--gapplication-service") != arguments.end();
}

/// By the file names of the usual ones and their helpers.
bool isInputMethod(const std::string& executable) {
    static constexpr std::array<std::string_view, 7> families{"ibus", "fcitx", "scim", "uim",
                                                              "hime", "gcin",  "nabi"};
    const std::string name = executable.substr(executable.rfind('/') + 1);
    return std::ranges::any_of(families,
                               [&](std::string_view family) { return name.starts_with(family); });
}

/// A running program whose file was replaced is still the same program.
std::string executableOf(ProcessId process, const ProcDirectory& proc) {
    constexpr std::string_view replaced = " (deleted)";
    std::string path = proc.link(process, "exe");
    if (path.ends_with(replaced))
        path.resize(path.size() - replaced.size());
    return path;
}

std::vector<std::string> entriesOf(const ProcessStat& process, const std::string& cgroup,
                                   const ProcDirectory& proc,
                                   const std::set<ProcessId>& windowOwners) {
    const std::string_view unit = applicationUnit(cgroup);
    if (unit.empty() || isGuest(process, unit, proc, windowOwners))
        return {};
    return desktopEntriesOfUnit(unit);
}

} // namespace

ProcessOrigin originOf(ProcessId process, const ProcDirectory& proc,
                       const std::set<ProcessId>& windowOwners) {
    ProcessOrigin origin;
    const std::string cgroup = proc.read(process, "cgroup");
    const auto stat = statOf(process, proc);
    if (!stat)
        return origin;
    const std::vector<std::string> arguments = processArguments(process, proc);
    const std::string executable = executableOf(process, proc);
    origin.isService = isStartedAsService(arguments) ||
                       (isUserService(cgroup) && isMainProcess(*stat, cgroup, proc));
    origin.isBackground = isAutostarted(cgroup) || isInputMethod(executable);
    origin.launchDate = startOf(*stat, proc);
    // Another user's executable can't be read, but its command line can.
    const bool isKnown = !executable.empty() || arguments.empty();
    origin.program =
        programOf(isKnown ? executable : arguments.front(), arguments, proc.link(process, "cwd"));
    origin.entries = entriesOf(*stat, cgroup, proc, windowOwners);
    return origin;
}

std::vector<std::string> entriesOf(ProcessId process, const ProcDirectory& proc,
                                   const std::set<ProcessId>& windowOwners) {
    const std::string cgroup = proc.read(process, "cgroup");
    const auto stat = applicationUnit(cgroup).empty() ? std::nullopt : statOf(process, proc);
    return stat ? entriesOf(*stat, cgroup, proc, windowOwners) : std::vector<std::string>();
}

} // namespace velmorquit
