#pragma once

#include "CommandLine.h"
#include "Platform/Formats.h"
#include "Repository.h"

namespace velmorquit::tmutil {

/// The property list of `status -X`. Quick: restic isn't asked.
void printStatusList();

/// The same for a person, with where it goes and when it was done last.
[[nodiscard]] ExitStatus printStatus(const Formats& formats);

/// The path of the newest backup. Quick: restic isn't asked.
[[nodiscard]] ExitStatus printLatestBackup();

[[nodiscard]] ExitStatus printDestinations();

/// Ends the backup that is under way.
[[nodiscard]] ExitStatus stopBackup();

/// Forgets a destination; what is in it stays.
[[nodiscard]] ExitStatus removeDestination(const CommandLine& line);

/// What is in the repositories that can be reached, and brings the record in line with that.
[[nodiscard]] ExitStatus listSnapshots(Restic& restic);

/// Has restic check every repository.
[[nodiscard]] ExitStatus checkDestinations(const CommandLine& line, Restic& restic);

/// What is in the destination's repository. A backup of this computer has the date that is on
/// record for it. The record is brought in line.
[[nodiscard]] Outcome<std::vector<Snapshot>> snapshotsIn(const Destination& destination,
                                                         Restic& restic);

} // namespace velmorquit::tmutil
