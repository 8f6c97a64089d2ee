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
    failure = 1, ///< failed at least in part
    usage = 2,   ///< the command line was not understood
};

/// The user's request on the command line. Paths may be any bytes.
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
    std::vector<std::string> names{}; ///< all arguments that aren't options
    std::vector<std::string> sources{};
    std::vector<std::string> excludes{};
    std::optional<KeepRules> keep{};
    std::string passwordFile{};
    std::string to{};
    bool isAwaited = false;
    bool isPropertyList = false;
    bool readsData = false;
};

/// Reads the arguments without the program's name.
[[nodiscard]] Outcome<CommandLine> parseCommandLine(std::vector<std::string> arguments);

} // namespace velmorquit::tmutil
