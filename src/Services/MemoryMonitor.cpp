#include "Services/MemoryMonitor.h"

namespace velmorquit::MemoryMonitor {

std::map<ProcessId, std::uint64_t> footprints(const Kernel& kernel,
                                              const std::vector<ProcessId>& ids) {
    std::map<ProcessId, std::uint64_t> bytes;
    for (const ProcessId id : ids) {
        if (const auto footprint = kernel.footprint(id))
            bytes.emplace(id, *footprint);
    }
    return bytes;
}

} // namespace velmorquit::MemoryMonitor
