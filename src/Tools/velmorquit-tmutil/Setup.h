#pragma once

#include "CommandLine.h"
#include "Restic.h"

namespace velmorquit::tmutil {

/// Makes a folder a place for backups: creates a repository there, or joins the existing one. If it
/// already is such a place, its settings are changed.
[[nodiscard]] ExitStatus setUp(const CommandLine& line, Restic& restic);

} // namespace velmorquit::tmutil
