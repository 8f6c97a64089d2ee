#include "Simulated/SimulatedPorts.h"

namespace velmorquit {

std::optional<std::uint64_t> SimulatedKernel::footprint(ProcessId id) const {
    if (isBlind)
        return std::nullopt;
    const auto known = memory_.find(id);
    return known == memory_.end() ? workspace_.memoryOf(id) : known->second;
}

std::set<ProcessId> SimulatedKernel::responsibleProcesses(const std::vector<ProcessId>& ids) const {
    std::set<ProcessId> responsible(ids.begin(), ids.end());
    for (const ProcessEntry& process : table_) {
        if (process.responsible != 0 && responsible.erase(process.id) > 0)
            responsible.insert(process.responsible);
    }
    return responsible;
}

} // namespace velmorquit
