#pragma once

#include "Linux/Proc/ProcDirectory.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmorquit {

/// What a process is shut in by, as far as the kernel tells of it.
struct Confinement {
    /// Whether it is, or nobody can tell.
    bool isConfined = true;
    /// What it goes by, for a person: the application's own id where whoever started it has noted
    /// one, else the file name of its program, which it may have chosen itself. Only letters,
    /// digits and "._+-", 60 of them and then an ellipsis; empty when nothing is known.
    std::string name{};
};

/// Looks at the process. It is confined when it has other users, processes or another root than
/// this one, or other mounts and no way to more rights, belongs to an application that is installed
/// with a sandbox, speaks on behalf of one, or the kernel's security module holds it. `label` is
/// what that module calls it, if known.
///
/// Nothing is opened below the root of the process, which may be a file system that never answers.
[[nodiscard]] Confinement confinementOf(ProcessId process, std::string_view label,
                                        const ProcDirectory& proc);

/// Device and folder of what is mounted at "/", by what `/proc/PID/mountinfo` holds; empty when
/// nothing is.
[[nodiscard]] std::string rootMount(std::string_view mountinfo);

} // namespace velmorquit
