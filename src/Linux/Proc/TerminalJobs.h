#pragma once

#include "Linux/Proc/ProcessStat.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// What has to be known of processes to tell whether a terminal is at work.
struct ProcessFacts {
    std::function<std::string(ProcessId)> executable;
    std::function<std::vector<std::string>(ProcessId)> arguments;
    /// Whether the process has windows of its own.
    std::function<bool(ProcessId)> ownsWindows;
    /// Whether it goes on when its terminal closes. Only asked of what would hold the terminal.
    std::function<bool(ProcessId)> ignoresHangup;
};

/// What somebody would lose work by.
enum class Loss {
    terminal, ///< its window closes: what has cut itself off from it goes on
    session,
};

/// Whether it is a program of ours, which survives its terminal.
[[nodiscard]] bool isOurProgram(std::string_view executable);

/// The process that is at work in the terminal whose session `leader` leads, if any is: of the job
/// in the foreground the first process, else one that was started in place of a shell, was stopped,
/// or has windows, or, by the loss of the terminal, is a job in the background. The leader stands
/// for a job that the system hides.
[[nodiscard]] std::optional<ProcessId> terminalJob(const ProcessStat& leader,
                                                   const std::vector<ProcessStat>& table,
                                                   const ProcessFacts& facts, Loss loss);

/// What the user calls a job by its first process: the name of its executable, or that of the
/// script that a shell runs. Any bytes; empty when the process has gone.
[[nodiscard]] std::string jobName(ProcessId job, const std::vector<ProcessStat>& table,
                                  const ProcessFacts& facts);

/// Whether `application` is a terminal (or has one inside) in which something runs that would be
/// lost if it were closed: a job in the foreground, one that was stopped, a command started in
/// place of a shell, a script, or what was started from there in the background, with or without
/// windows, and that the shell takes along when it goes. A shell at its prompt is none, nor is what
/// survives its terminal: a program of ours, and a multiplexer, whose panes go on elsewhere.
[[nodiscard]] bool hasTerminalJob(ProcessId application, const std::vector<ProcessStat>& table,
                                  const ProcessFacts& facts);

/// Whether `application` has a terminal in which somebody has a session.
[[nodiscard]] bool hasTerminal(ProcessId application, const std::vector<ProcessStat>& table,
                               const ProcessFacts& facts);

/// Whether nothing goes on in the terminals of `application`: their shells wait, and velmorctl,
/// about which a terminal would ask before it closes, is not in front.
[[nodiscard]] bool terminalsRest(ProcessId application, const std::vector<ProcessStat>& table,
                                 const ProcessFacts& facts);

} // namespace velmorquit
