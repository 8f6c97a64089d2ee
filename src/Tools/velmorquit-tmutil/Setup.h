#pragma once

#include "CommandLine.h"
#include "Restic.h"

namespace velmorquit::tmutil {

/// Makes a folder a place for backups: prepares a repository there or joins the one that is there.
/// For a place that is one already its settings are changed.
[[nodiscard]] ExitStatus setUp(const CommandLine& line, Restic& restic);

} // namespace velmorquit::tmutil
