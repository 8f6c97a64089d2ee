#pragma once

#include "Model/AfterQuit.h"
#include "Remote/Verbs.h"

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// Exit statuses of velmorctl.
enum class ExitStatus {
    success = 0,
    failure = 1,       ///< refused, or the run ended with something left open
    usage = 2,         ///< the command line was not understood
    notRunning = 3,    ///< there is no program to talk to
    timedOut = 4,      ///< the wait exceeded its limit; what it waited for goes on
    stranger = 5,      ///< another program has the expected name
    asking = 6,        ///< nothing happens until the user agrees on the screen
    interrupted = 130, ///< by Ctrl+C; what it waited for goes on
};

/// The user's request on the command line.
struct CommandLine {
    const remote::Command* command = nullptr; ///< never null
    std::vector<std::string> arguments{};     ///< of the verb, as far as the line gives them
    AfterQuit then = AfterQuit::nothing;      ///< the action that follows the run
    bool isConfirmed = false;                 ///< no question is asked first
    bool endsWithRun = false;                 ///< doesn't wait for the action after the run
    /// How long to wait for a run; none means without limit.
    std::optional<std::chrono::milliseconds> timeout{};
    bool wantsJson = false;
};

/// Reads the arguments without the program's name; a text says what is wrong with them. Commands
/// may be shortened as long as they remain unique.
[[nodiscard]] std::variant<CommandLine, std::string>
parseCommandLine(const std::vector<std::string>& arguments);

/// How velmorctl is used.
[[nodiscard]] std::string usage();

} // namespace velmorquit
