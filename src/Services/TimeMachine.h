#pragma once

#include "Loop/Time.h"
#include "Platform/BackupTool.h"
#include "Platform/ChildProcesses.h"
#include "Platform/Files.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>

/// The system's backups, through the tool that makes them. Unreadable data counts as missing.
namespace velmorquit::TimeMachine {

struct Info {
    bool isConfigured = false; ///< there is a place for backups
    std::optional<WallTime> lastBackup;

    friend bool operator==(const Info&, const Info&) = default;
};

struct Status {
    bool running = false;
    std::optional<double> fraction; ///< 0 to 1

    friend bool operator==(const Status&, const Status&) = default;
};

/// Reads the tool's property list; quick.
[[nodiscard]] Info info(const Files& files, const BackupTool& tool);

/// When the newest backup was made, according to the tool. Blocks.
[[nodiscard]] std::optional<WallTime> latestBackupDate(ChildProcesses& children,
                                                       const BackupTool& tool);

/// How far the running backup is. Blocks.
[[nodiscard]] Status status(ChildProcesses& children, const BackupTool& tool);

/// Starts a backup, which lasts as long as the process; exit status 0 means success. A text says
/// why it could not be started.
[[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
startBackup(ChildProcesses& children, const BackupTool& tool);

/// Has the tool stop the running backup. Blocks.
void stopBackup(ChildProcesses& children, const BackupTool& tool);

/// The last non-blank line that the process has written to standard error.
[[nodiscard]] std::optional<std::string> errorMessage(const ChildProcess& process);

} // namespace velmorquit::TimeMachine
