#pragma once

#include "CommandLine.h"
#include "Platform/Formats.h"
#include "Restic.h"

namespace velmorquit::tmutil {

/// Backs up to every destination in turn. One that fails doesn't hold back the others; then the
/// status is a failure, and the last line on standard error says why.
[[nodiscard]] ExitStatus backUp(Restic& restic, const Formats& formats);

/// Starts a backup that goes on by itself, and waits until it is under way.
[[nodiscard]] ExitStatus backUpInBackground();

} // namespace velmorquit::tmutil
