#pragma once

#include "Platform/Kernel.h"

#include <map>
#include <vector>

namespace velmorquit::MemoryMonitor {

/// Memory of each of these processes in bytes; those for which there is no figure are left out.
[[nodiscard]] std::map<ProcessId, std::uint64_t> footprints(const Kernel& kernel,
                                                            const std::vector<ProcessId>& ids);

} // namespace velmorquit::MemoryMonitor
