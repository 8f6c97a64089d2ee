#include "Services/MemoryMonitor.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace velmorquit::MemoryMonitor {

namespace {

/// Lower ids are the kernel's idle task and the first process, the ancestor of all others.
constexpr ProcessId firstOrdinaryId = 2;

using Children = std::unordered_map<ProcessId, std::vector<ProcessId>>;

Children childrenIn(const std::vector<ProcessEntry>& table) {
    Children children;
    for (const ProcessEntry& process : table) {
        if (process.id >= firstOrdinaryId && process.parent >= firstOrdinaryId)
            children[process.parent].push_back(process.id);
    }
    return children;
}

std::set<ProcessId> withDescendants(ProcessId root, const Children& children) {
    std::set<ProcessId> group;
    std::vector<ProcessId> open{root};
    while (!open.empty()) {
        const ProcessId id = open.back();
        open.pop_back();
        if (!group.insert(id).second)
            continue;
        const auto found = children.find(id);
        if (found != children.end())
            open.insert(open.end(), found->second.begin(), found->second.end());
    }
    return group;
}

} // namespace

SystemMemory system(const Kernel& kernel) {
    SystemMemory memory{.used = 0, .total = kernel.totalMemory()};
    if (const auto pages = kernel.memoryPages()) {
        const std::uint64_t used = pages->internal - std::min(pages->purgeable, pages->internal) +
                                   pages->wired + pages->compressor;
        memory.used = std::min(memory.total, used * pages->pageSize);
    }
    return memory;
}

std::map<ProcessId, std::uint64_t> footprints(const Kernel& kernel,
                                              const std::vector<ProcessId>& ids) {
    const std::vector<ProcessEntry> table = kernel.processTable();
    const Children children = childrenIn(table);
    std::map<ProcessId, std::set<ProcessId>> groups;
    for (const ProcessId id : ids)
        groups.emplace(id, withDescendants(id, children));
    for (const ProcessEntry& process : table) {
        const auto group = groups.find(process.responsible);
        if (process.id >= firstOrdinaryId && group != groups.end() && !groups.contains(process.id))
            group->second.insert(process.id);
    }

    // A helper shared by two applications is read only once.
    std::unordered_map<ProcessId, std::uint64_t> figures;
    std::map<ProcessId, std::uint64_t> sums;
    for (const auto& [id, group] : groups) {
        std::uint64_t& sum = sums[id];
        for (const ProcessId member : group) {
            const auto [figure, isNew] = figures.try_emplace(member, 0);
            if (isNew)
                figure->second = kernel.footprint(member).value_or(0);
            sum += figure->second;
        }
    }
    return sums;
}

} // namespace velmorquit::MemoryMonitor
