#pragma once

#include <string>

namespace velmorquit {

/// The tool that makes this system's backups, and the property list of its destinations. Both are
/// paths, empty where there is no such tool.
struct BackupTool {
    std::string program;
    std::string destinations;
};

} // namespace velmorquit
