#pragma once

#include "Linux/Proc/ProcDirectory.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmorquit {

/// The sandbox of a process, as far as the kernel tells.
struct Confinement {
    /// Whether it is sandboxed, or that can't be told.
    bool isConfined = true;
    /// Its name for the user: the application's own id if the launcher has recorded one, else the
    /// file name of its program, which it may have chosen itself. Only letters, digits and "._+-",
    /// at most 60 of them before an ellipsis; empty when nothing is known.
    std::string name{};
};

/// Looks at the process. It is confined if it has other users, processes or another root than this
/// one, or other mounts and no way to gain privileges; if it belongs to an application installed
/// with a sandbox or speaks on behalf of one; or if the kernel's security module restricts it.
/// `label` is the module's label for it, if known.
///
/// Nothing is opened below the process's root, which may be a file system that never answers.
[[nodiscard]] Confinement confinementOf(ProcessId process, std::string_view label,
                                        const ProcDirectory& proc);

/// Device and folder of the mount at "/", from the content of `/proc/PID/mountinfo`; empty when
/// there is none.
[[nodiscard]] std::string rootMount(std::string_view mountinfo);

} // namespace velmorquit
