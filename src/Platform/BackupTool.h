#pragma once

#include <string>

namespace velmorquit {

/// The tool that makes this system's backups, and the property list that tells where they go. Both
/// are paths, empty where there is no such tool.
struct BackupTool {
    std::string program;
    std::string destinations;
};

} // namespace velmorquit
