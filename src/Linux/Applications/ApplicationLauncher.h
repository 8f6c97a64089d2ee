#pragma once

#include "Linux/Applications/ProcessHandle.h"
#include "Platform/SystemLog.h"

#include <map>
#include <string>
#include <vector>

namespace velmorquit {

/// Starts applications by their desktop entries, independent of this program: they have a session
/// of their own, no terminal, and none of its streams, signals or private variables.
///
/// What reads the entry and starts the application is a process of its own, so that nothing that it
/// meets (a damaged entry, a file system or a bus that hangs) is met on the main thread.
class ApplicationLauncher {
public:
    /// `starter` is a command that starts the desktop entry whose path is appended to it, and ends;
    /// the first word is a path. `log` outlives this.
    ApplicationLauncher(std::vector<std::string> starter, SystemLog& log)
        : starter_(std::move(starter)), log_(log) {}

    /// Starts the application of that desktop entry. Returns at once; a failure is a line in the
    /// log.
    void launch(const std::string& path);

private:
    void takeNote(ProcessId starter, const std::string& path);
    void complain(const std::string& path);

    std::vector<std::string> starter_;
    SystemLog& log_;
    std::map<ProcessId, std::unique_ptr<ProcessHandle>> running_;
};

} // namespace velmorquit
