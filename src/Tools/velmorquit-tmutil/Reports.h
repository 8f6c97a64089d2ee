#pragma once

#include "CommandLine.h"
#include "Platform/Formats.h"
#include "Repository.h"

namespace velmorquit::tmutil {

/// Prints the property list of `status -X`. Quick: restic isn't asked.
void printStatusList();

/// The same for the user, with the destinations and the last backups.
[[nodiscard]] ExitStatus printStatus(const Formats& formats);

/// The path of the newest backup. Quick: restic isn't asked.
[[nodiscard]] ExitStatus printLatestBackup();

[[nodiscard]] ExitStatus printDestinations();

/// Ends the running backup.
[[nodiscard]] ExitStatus stopBackup();

/// Forgets a destination; its content stays.
[[nodiscard]] ExitStatus removeDestination(const CommandLine& line);

/// Prints the content of the repositories that can be reached, and updates the record.
[[nodiscard]] ExitStatus listSnapshots(Restic& restic);

/// Has restic check every repository.
[[nodiscard]] ExitStatus checkDestinations(const CommandLine& line, Restic& restic);

/// The content of the destination's repository. Backups of this computer have their recorded dates.
/// Updates the record.
[[nodiscard]] Outcome<std::vector<Snapshot>> snapshotsIn(const Destination& destination,
                                                         Restic& restic);

} // namespace velmorquit::tmutil
