#pragma once

#include "Platform/BackupTool.h"

namespace velmorquit {

/// The one that was installed or built together with this program, else the one in PATH; empty
/// without one. A virtual desktop may have one that stands in for it.
[[nodiscard]] BackupTool installedBackupTool();

} // namespace velmorquit
