#pragma once

#include "Linux/Applications/RunProgram.h"
#include "Linux/Proc/ProcDirectory.h"
#include "Loop/Time.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// How a process came to run.
struct ProcessOrigin {
    /// The desktop entries, without ".desktop", that it may have been started from, most likely
    /// first; empty when its unit doesn't say or was made for another program.
    std::vector<std::string> entries;
    /// The session or its bus keeps it as a background service.
    bool isService = false;
    /// It was started with the session, or is an input method: the user has not started it to work
    /// with it.
    bool isBackground = false;
    std::optional<WallTime> launchDate;
    RunProgram program;
};

/// Looks at a process. A unit also contains everything that its programs start: its name belongs to
/// the oldest of `windowOwners` in it.
[[nodiscard]] ProcessOrigin originOf(ProcessId process, const ProcDirectory& proc,
                                     const std::set<ProcessId>& windowOwners);

/// Only the entries. Launchers start a program before they give it a unit of its own: a first look
/// may not find all of them.
[[nodiscard]] std::vector<std::string> entriesOf(ProcessId process, const ProcDirectory& proc,
                                                 const std::set<ProcessId>& windowOwners);

} // namespace velmorquit
