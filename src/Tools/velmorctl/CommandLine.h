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
    usage = 2,         ///< the words were not understood
    notRunning = 3,    ///< there is no program to talk to
    timedOut = 4,      ///< the wait took longer than it was to; what was waited for goes on
    stranger = 5,      ///< another program has the name of the one to talk to
    asking = 6,        ///< nothing is done until the user has agreed on the screen
    interrupted = 130, ///< by Ctrl+C; what was waited for goes on
};

/// What the user asked for on the command line.
struct CommandLine {
    const remote::Command* command = nullptr; ///< never null
    std::vector<std::string> arguments{};     ///< of its verb, where the line has them
    AfterQuit then = AfterQuit::nothing;      ///< what is to follow a run
    bool isConfirmed = false;                 ///< no question is to be asked first
    bool endsWithRun = false;                 ///< what follows a run isn't waited for
    /// How long a run is waited for; none for as long as it takes.
    std::optional<std::chrono::milliseconds> timeout{};
    bool wantsJson = false;
};

/// Reads the arguments, the program's name left out; a text says what is wrong with them. Commands
/// may be shortened to what they alone begin with.
[[nodiscard]] std::variant<CommandLine, std::string>
parseCommandLine(const std::vector<std::string>& arguments);

/// How velmorctl is used.
[[nodiscard]] std::string usage();

} // namespace velmorquit
