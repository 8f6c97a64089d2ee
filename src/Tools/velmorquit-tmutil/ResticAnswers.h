#pragma once

#include "Loop/Time.h"

#include <QString>

#include <string>
#include <vector>

namespace velmorquit::tmutil {

/// A backup as the repository has it.
struct Snapshot {
    std::string id;
    WallTime date; ///< whole seconds, rounded up
    std::string host;
    std::vector<std::string> paths;
    bool isOurs = false; ///< made by this tool
};

/// What restic answers, from the bytes that it prints. What makes no sense is left out.
namespace ResticAnswers {

/// What this tool's own snapshots are marked with.
inline constexpr const char* tag = "velmorquit";

/// All that is in a repository, oldest first; of `restic snapshots --json`.
[[nodiscard]] std::vector<Snapshot> snapshots(const std::string& output);

/// The ids of what was removed; of `restic forget --json`.
[[nodiscard]] std::vector<std::string> removed(const std::string& output);

/// The last line that says something to a person; restic ends some of its messages with others.
[[nodiscard]] std::string lastLine(const std::string& errors);

/// Since 1970, of a time such as "2026-11-23T03:52:56.946434519Z"; 0 where it is none.
[[nodiscard]] std::int64_t seconds(const QString& time);

} // namespace ResticAnswers
} // namespace velmorquit::tmutil
