#include "Linux/Applications/ProcessOrigin.h"

#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcessStat.h"

#include <algorithm>
#include <charconv>

#include <unistd.h>

namespace velmorquit {

namespace {

/// Whether the unit was made for another program, from which this one was started.
bool isGuest(const ProcessStat& process, std::string_view unit, const ProcDirectory& proc,
             const std::function<bool(ProcessId)>& ownsWindows) {
    // Processes that change while they are read may look like a circle.
    constexpr int deepest = 64;
    ProcessId ancestor = process.parent;
    for (int depth = 0; depth < deepest && ancestor > 1; ++depth) {
        if (applicationUnit(proc.read(ancestor, "cgroup")) != unit)
            return false;
        if (ownsWindows(ancestor))
            return true;
        const auto stat = parseProcessStat(proc.read(ancestor, "stat"));
        ancestor = stat ? stat->parent : 0;
    }
    return false;
}

/// The system's start is known in seconds, a process's in ticks since then.
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

/// A program that offers its services on the bus may be started for these alone.
bool isStartedAsService(const std::string& commandLine) {
    return commandLine.find(std::string("\0--gapplication-service\0", 24)) != std::string::npos;
}

} // namespace

ProcessOrigin originOf(ProcessId process, const ProcDirectory& proc,
                       const std::function<bool(ProcessId)>& ownsWindows) {
    ProcessOrigin origin;
    const std::string cgroup = proc.read(process, "cgroup");
    origin.isService = isUserService(cgroup) || isStartedAsService(proc.read(process, "cmdline"));
    const auto stat = parseProcessStat(proc.read(process, "stat"));
    if (!stat)
        return origin;
    origin.launchDate = startOf(*stat, proc);
    const std::string_view unit = applicationUnit(cgroup);
    if (!unit.empty() && !isGuest(*stat, unit, proc, ownsWindows))
        origin.entries = desktopEntriesOfUnit(unit);
    return origin;
}

} // namespace velmorquit
