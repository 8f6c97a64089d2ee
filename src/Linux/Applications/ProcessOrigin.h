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
    /// It came with the session, or takes in what is typed for other programs: the user has not
    /// started it to work with it.
    bool isBackground = false;
    std::optional<WallTime> launchDate;
    RunProgram program;
};

/// Looks at a process. Whatever a program starts is in its unit as well: the unit names the oldest
/// one in there that is among `windowOwners`.
[[nodiscard]] ProcessOrigin originOf(ProcessId process, const ProcDirectory& proc,
                                     const std::set<ProcessId>& windowOwners);

/// The entries alone. Launchers start a program before they give it a unit of its own: what there
/// was at first may not be all.
[[nodiscard]] std::vector<std::string> entriesOf(ProcessId process, const ProcDirectory& proc,
                                                 const std::set<ProcessId>& windowOwners);

} // namespace velmorquit
