#pragma once

#include "Linux/Proc/ProcessStat.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// The facts about processes needed to tell whether a terminal is at work.
struct ProcessFacts {
    std::function<std::string(ProcessId)> executable;
    std::function<std::vector<std::string>(ProcessId)> arguments;
    /// Whether the process has windows of its own.
    std::function<bool(ProcessId)> ownsWindows;
    /// Whether it goes on when its terminal closes. Only asked about processes that would hold it.
    std::function<bool(ProcessId)> ignoresHangup;
};

/// The event by which work would be lost.
enum class Loss {
    terminal, ///< its window closes: detached processes go on
    session,
};

/// Whether it is one of our programs, which survive their terminal.
[[nodiscard]] bool isOurProgram(std::string_view executable);

/// The process at work in the terminal whose session `leader` leads, if any: the first process of
/// the job in the foreground; or else one that was started in place of a shell, was stopped, has
/// windows or, for the loss of the terminal, is a job in the background. The leader stands for a
/// job that the system hides.
[[nodiscard]] std::optional<ProcessId> terminalJob(const ProcessStat& leader,
                                                   const std::vector<ProcessStat>& table,
                                                   const ProcessFacts& facts, Loss loss);

/// The user's name for a job with this first process: the name of its executable, or of the script
/// that a shell runs. Any bytes; empty when the process has gone.
[[nodiscard]] std::string jobName(ProcessId job, const std::vector<ProcessStat>& table,
                                  const ProcessFacts& facts);

/// Whether `application` is a terminal (or contains one) with a job that closing it would end: one
/// in the foreground, a stopped one, a command started in place of a shell, a script, or one in the
/// background, with or without windows, that the shell takes along. A shell at its prompt doesn't
/// count, nor do programs that survive their terminal: ours, and multiplexers, whose panes go on
/// elsewhere.
[[nodiscard]] bool hasTerminalJob(ProcessId application, const std::vector<ProcessStat>& table,
                                  const ProcessFacts& facts);

/// Whether `application` has a terminal with a session in it.
[[nodiscard]] bool hasTerminal(ProcessId application, const std::vector<ProcessStat>& table,
                               const ProcessFacts& facts);

/// Whether the terminals of `application` are idle: their shells wait, and velmorctl, about which a
/// terminal would ask before closing, is not in front.
[[nodiscard]] bool terminalsRest(ProcessId application, const std::vector<ProcessStat>& table,
                                 const ProcessFacts& facts);

} // namespace velmorquit
