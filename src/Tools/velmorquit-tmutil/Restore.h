#pragma once

#include "CommandLine.h"
#include "Restic.h"

namespace velmorquit::tmutil {

/// Restores a backup, or one path of it, into a folder that is new or empty. Everything keeps its
/// path below that folder.
[[nodiscard]] ExitStatus restore(const CommandLine& line, Restic& restic);

} // namespace velmorquit::tmutil
