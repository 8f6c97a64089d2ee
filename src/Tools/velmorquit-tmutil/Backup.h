#pragma once

#include "CommandLine.h"
#include "Platform/Formats.h"
#include "Restic.h"

namespace velmorquit::tmutil {

/// Backs up to every destination in turn. A failure doesn't stop the others, but then the status is
/// a failure, and the last line on standard error gives the reason.
[[nodiscard]] ExitStatus backUp(Restic& restic, const Formats& formats);

/// Starts a backup that goes on in the background, and waits until it is running.
[[nodiscard]] ExitStatus backUpInBackground();

} // namespace velmorquit::tmutil
