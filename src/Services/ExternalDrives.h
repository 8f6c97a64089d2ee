#pragma once

#include "Loop/Task.h"
#include "Platform/Volumes.h"

#include <string>
#include <vector>

namespace velmorquit::ExternalDrives {

/// One external volume.
struct Drive {
    std::string name; ///< as it may be shown
    std::string url;  ///< where it is mounted

    friend bool operator==(const Drive&, const Drive&) = default;
};

struct Ejected {
    int count = 0;                   ///< drives that are gone
    std::vector<std::string> failed; ///< names of those still mounted, in their listing order
};

inline constexpr int mostAttempts = 3;
inline constexpr Duration betweenAttempts = 3s;

/// The external volumes that are mounted, in the system's order. From memory.
[[nodiscard]] std::vector<Drive> connected(const Volumes& volumes);

/// Ejects all of them, one after another, each at most three times with 3 s in between. Both
/// arguments must outlive the task.
Task<Ejected> ejectAll(MainLoop& loop, Volumes& volumes);

} // namespace velmorquit::ExternalDrives
