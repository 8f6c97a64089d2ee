#pragma once

#include "Platform/BackupTool.h"

namespace velmorquit {

/// The tool that was installed or built together with this program, else the one in PATH; empty
/// without one. A virtual desktop may use a stand-in.
[[nodiscard]] BackupTool installedBackupTool();

} // namespace velmorquit
