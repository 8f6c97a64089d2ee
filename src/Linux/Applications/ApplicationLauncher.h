#pragma once

#include "Linux/Applications/ProcessHandle.h"
#include "Platform/SystemLog.h"

#include <map>
#include <string>
#include <vector>

namespace velmorquit {

/// Starts applications by their desktop entries, independent of this program: they get their own
/// session, no terminal, and none of its streams, signals or private variables.
///
/// The entry is read and the application started in a separate process, so that problems (a damaged
/// entry, a file system or a bus that hangs) don't affect the main thread.
class ApplicationLauncher {
public:
    /// `starter` is a command that starts the desktop entry whose path is appended to it, and ends;
    /// its first word is a path. `log` must outlive this object.
    ApplicationLauncher(std::vector<std::string> starter, SystemLog& log)
        : starter_(std::move(starter)), log_(log) {}

    /// Starts the application of that desktop entry. Returns at once; a failure is logged as one
    /// line.
    void launch(const std::string& path);

private:
    void takeNote(ProcessId starter, const std::string& path);
    void complain(const std::string& path);

    std::vector<std::string> starter_;
    SystemLog& log_;
    std::map<ProcessId, std::unique_ptr<ProcessHandle>> running_;
};

} // namespace velmorquit
