#pragma once

#include "CommandLine.h"
#include "Restic.h"

namespace velmorquit::tmutil {

/// Gets a backup, or one path of it, back into a folder that is new or empty. Everything keeps its
/// path below that folder.
[[nodiscard]] ExitStatus restore(const CommandLine& line, Restic& restic);

} // namespace velmorquit::tmutil
