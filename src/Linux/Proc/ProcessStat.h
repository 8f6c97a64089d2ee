#pragma once

#include "Linux/Proc/ProcDirectory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// The facts that /proc gives about a process.
struct ProcessStat {
    ProcessId id = 0;
    std::string command;   ///< name of the executable, at most 15 bytes, any bytes
    char state = '?';      ///< 'T' when it is stopped
    bool hasEnded = false; ///< its parent has not collected its status yet
    ProcessId parent = 0;
    ProcessId group = 0;
    ProcessId session = 0;
    int terminal = 0;         ///< device number of the controlling terminal, 0 for none
    ProcessId foreground = 0; ///< process group in the foreground of that terminal, -1 for none
    /// Clock ticks of processor time, also of its children that have ended and whose status it has
    /// collected.
    std::uint64_t processorTime = 0;
    std::uint64_t startTime = 0; ///< clock ticks between the system's start and the process's
};

/// Parses the content of `/proc/PID/stat`; none when it isn't such a line.
[[nodiscard]] std::optional<ProcessStat> parseProcessStat(std::string_view line);

/// Looks at the process; none when it has gone.
[[nodiscard]] std::optional<ProcessStat> readProcessStat(ProcessId id);

/// Looks at all processes; those that vanish meanwhile are left out.
[[nodiscard]] std::vector<ProcessStat>
readProcessTable(const ProcDirectory& proc = ProcDirectory());

/// File name, without folders, of the executable of the process, even if the file was replaced
/// since; empty when unknown.
[[nodiscard]] std::string executableName(ProcessId id, const ProcDirectory& proc = ProcDirectory());

/// The arguments with which the process was started, the command itself first.
[[nodiscard]] std::vector<std::string>
processArguments(ProcessId id, const ProcDirectory& proc = ProcDirectory());

/// Whether the process ignores the hang-up of its terminal; false when unknown.
[[nodiscard]] bool ignoresHangup(ProcessId id, const ProcDirectory& proc = ProcDirectory());

/// A variable of the environment with which the process was started; none without it.
[[nodiscard]] std::optional<std::string> processEnvironment(ProcessId id, std::string_view name);

} // namespace velmorquit
