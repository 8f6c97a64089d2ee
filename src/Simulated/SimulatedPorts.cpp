#include "Simulated/SimulatedPorts.h"

namespace velmorquit {

std::optional<std::uint64_t> SimulatedKernel::footprint(ProcessId id) const {
    if (isBlind)
        return std::nullopt;
    const auto known = memory_.find(id);
    return known == memory_.end() ? workspace_.memoryOf(id) : known->second;
}

ProcessId SimulatedKernel::responsibleProcess(ProcessId id) const {
    for (const ProcessEntry& process : table_) {
        if (process.id == id && process.responsible != 0)
            return process.responsible;
    }
    return id;
}

} // namespace velmorquit
