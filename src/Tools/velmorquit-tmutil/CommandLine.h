#pragma once

#include "Problem.h"
#include "Settings.h"

#include <optional>
#include <string>
#include <vector>

namespace velmorquit::tmutil {

/// Exit statuses of velmorquit-tmutil.
enum class ExitStatus {
    success = 0,
    failure = 1, ///< not done, or not all of it
    usage = 2,   ///< the words were not understood
};

/// What the user asked for on the command line. Paths are any bytes.
struct CommandLine {
    enum class Command {
        help,
        setup,
        destinations,
        remove,
        startBackup,
        status,
        latestBackup,
        stopBackup,
        list,
        restore,
        check
    };

    Command command = Command::help;
    std::vector<std::string> names{}; ///< what is no option
    std::vector<std::string> sources{};
    std::vector<std::string> excludes{};
    std::optional<KeepRules> keep{};
    std::string passwordFile{};
    std::string to{};
    bool isAwaited = false;
    bool isPropertyList = false;
    bool readsData = false;
};

/// Reads the arguments, the program's name left out.
[[nodiscard]] Outcome<CommandLine> parseCommandLine(std::vector<std::string> arguments);

} // namespace velmorquit::tmutil
