#pragma once

#include "Loop/Time.h"

#include <QString>

#include <string>
#include <vector>

namespace velmorquit::tmutil {

/// A backup in the repository.
struct Snapshot {
    std::string id;
    WallTime date; ///< whole seconds, rounded up
    std::string host;
    std::vector<std::string> paths;
    bool isOurs = false; ///< made by this tool
};

/// Parses the output of restic. Invalid parts are left out.
namespace ResticAnswers {

/// The mark of this tool's own snapshots.
inline constexpr const char* tag = "velmorquit";

/// All snapshots in a repository, oldest first; from `restic snapshots --json`.
[[nodiscard]] std::vector<Snapshot> snapshots(const std::string& output);

/// The ids of the removed snapshots; from `restic forget --json`.
[[nodiscard]] std::vector<std::string> removed(const std::string& output);

/// The last line that tells the user something; restic ends some of its messages with others.
[[nodiscard]] std::string lastLine(const std::string& errors);

/// Seconds since 1970 for a time such as "2026-11-23T03:52:56.946434519Z"; 0 if it is invalid.
[[nodiscard]] std::int64_t seconds(const QString& time);

} // namespace ResticAnswers
} // namespace velmorquit::tmutil
