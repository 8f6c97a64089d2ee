#pragma once

#include "Platform/Kernel.h"

#include <map>
#include <vector>

namespace velmorquit::MemoryMonitor {

/// The computer's memory, in bytes.
struct SystemMemory {
    std::uint64_t used =
        0; ///< by programs and the kernel, files in memory left out; at most `total`
    std::uint64_t total = 0;

    friend bool operator==(const SystemMemory&, const SystemMemory&) = default;
};

/// `used` is 0 when the kernel doesn't say.
[[nodiscard]] SystemMemory system(const Kernel& kernel);

/// Memory of each of these applications in bytes: its process, all descendants, and the processes
/// for which the system holds it responsible. A process without a figure counts 0.
[[nodiscard]] std::map<ProcessId, std::uint64_t> footprints(const Kernel& kernel,
                                                            const std::vector<ProcessId>& ids);

} // namespace velmorquit::MemoryMonitor
