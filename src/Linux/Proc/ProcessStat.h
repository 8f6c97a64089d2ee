#pragma once

#include "Linux/Proc/ProcDirectory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// What /proc tells of a process.
struct ProcessStat {
    ProcessId id = 0;
    std::string command;   ///< name of the executable, at most 15 bytes, any bytes
    char state = '?';      ///< 'T' when it was stopped
    bool hasEnded = false; ///< and waits for its parent to take note of it
    ProcessId parent = 0;
    ProcessId group = 0;
    ProcessId session = 0;
    int terminal = 0;         ///< device number of the controlling terminal, 0 for none
    ProcessId foreground = 0; ///< process group in the foreground of that terminal, -1 for none
    /// Clock ticks that processors have spent on it, and on those of its children that have ended
    /// and whose end it has taken note of.
    std::uint64_t processorTime = 0;
    std::uint64_t startTime = 0; ///< clock ticks between the system's start and the process's
};

/// Reads what `/proc/PID/stat` holds; none when it isn't such a line.
[[nodiscard]] std::optional<ProcessStat> parseProcessStat(std::string_view line);

/// Looks at the process; none when it has gone.
[[nodiscard]] std::optional<ProcessStat> readProcessStat(ProcessId id);

/// Looks at all processes; those that vanish meanwhile are left out.
[[nodiscard]] std::vector<ProcessStat>
readProcessTable(const ProcDirectory& proc = ProcDirectory());

/// File name, without folders, of what the process executes, also when that file was replaced
/// since; empty when it can't be known.
[[nodiscard]] std::string executableName(ProcessId id, const ProcDirectory& proc = ProcDirectory());

/// The arguments with which the process was started, the command itself first.
[[nodiscard]] std::vector<std::string>
processArguments(ProcessId id, const ProcDirectory& proc = ProcDirectory());

/// Whether the process takes no notice of its terminal's closing; false when that can't be known.
[[nodiscard]] bool ignoresHangup(ProcessId id, const ProcDirectory& proc = ProcDirectory());

/// A variable of the environment with which the process was started; none without it.
[[nodiscard]] std::optional<std::string> processEnvironment(ProcessId id, std::string_view name);

} // namespace velmorquit
