#include "Linux/Proc/ProcKernel.h"

#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcText.h"
#include "Linux/Proc/ProcessStat.h"
#include "Linux/Text/Utf8.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <fstream>
#include <map>
#include <unistd.h>
#include <unordered_map>

namespace velmorquit {

namespace {

using ProcText::numberAt;
using ProcText::textAt;

/// Sum of the fields that exist, in bytes; none without any of them.
template <std::size_t count>
std::optional<std::uint64_t> sumOfKibibytes(std::string_view text,
                                            const std::array<std::string_view, count>& fields) {
    std::optional<std::uint64_t> bytes;
    for (const std::string_view field : fields) {
        if (const auto kibibytes = numberAt(text, field))
            bytes = bytes.value_or(0) + *kibibytes * 1024;
    }
    return bytes;
}

/// Texts that makers leave in place of a name.
bool isPlaceholder(std::string_view name) {
    static constexpr std::array<std::string_view, 7> placeholders{"",
                                                                  "To Be Filled By O.E.M.",
                                                                  "System Product Name",
                                                                  "System manufacturer",
                                                                  "Default string",
                                                                  "Not Specified",
                                                                  "Not Applicable"};
    return std::ranges::find(placeholders, name) != placeholders.end();
}

} // namespace

ProcKernel::ProcKernel(const std::string& proc, std::string sys)
    : proc_(proc), sys_(std::move(sys)) {}

ProcessId ProcKernel::ownProcessId() const { return ::getpid(); }

std::uint64_t ProcKernel::totalMemory() const {
    return numberAt(proc_.read("meminfo"), "MemTotal:").value_or(0) * 1024;
}

std::optional<MemoryPages> ProcKernel::memoryPages() const {
    const std::string info = proc_.read("meminfo");
    const auto internal = sumOfKibibytes<2>(info, {"AnonPages:", "Shmem:"});
    if (!internal)
        return std::nullopt;
    constexpr std::array<std::string_view, 6> kernelOnly{
        "SUnreclaim:", "KernelStack:", "PageTables:", "SecPageTables:", "Percpu:", "Hugetlb:"};
    // Compressed pages are held by zswap or by a compressed disk in memory; the second figure
    // counts the disk's pages as well.
    const std::uint64_t zswap = numberAt(info, "Zswap:").value_or(0) * 1024;
    const std::uint64_t zspages = numberAt(proc_.read("vmstat"), "nr_zspages ").value_or(0) *
                                  static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return MemoryPages{.pageSize = 1,
                       .internal = *internal,
                       .purgeable = 0,
                       .wired = sumOfKibibytes(info, kernelOnly).value_or(0),
                       .compressor = std::max(zswap, zspages)};
}

bool KnownProcesses::readInto(Known& known, ProcessId id, const ProcDirectory& proc,
                              std::chrono::seconds now) {
    constexpr std::chrono::seconds youth{2};
    static const auto ticks = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    proc.read(id, "stat", text_);
    const auto stat = parseProcessStat(text_);
    if (!stat)
        return false;
    known.parent = stat->parent;
    const bool isSame = known.isSettled && known.startTime == stat->startTime;
    known.startTime = stat->startTime;
    if (isSame)
        return true;
    proc.read(id, "cgroup", text_);
    known.unit = applicationUnit(text_);
    known.isSettled = now - std::chrono::seconds(stat->startTime / ticks) > youth;
    return true;
}

void KnownProcesses::look(const ProcDirectory& proc,
                          const std::function<void(ProcessId, const Known&)>& visit) {
    constexpr std::chrono::seconds memory{30};
    timespec sinceBoot{};
    ::clock_gettime(CLOCK_BOOTTIME, &sinceBoot);
    const std::chrono::seconds now(sinceBoot.tv_sec);
    if (now - emptiedAt_ >= memory) {
        known_.clear();
        emptiedAt_ = now;
    }
    std::vector<ProcessId> ids = proc.processes();
    std::vector<ProcessId> sorted = ids;
    std::ranges::sort(sorted);
    ++look_;
    for (const ProcessId id : ids) {
        Known& known = known_[id];
        const bool hasParent =
            known.parent <= 1 || std::ranges::binary_search(sorted, known.parent);
        if (!known.isSettled || known.look != look_ - 1 || !hasParent) {
            if (!readInto(known, id, proc, now))
                continue;
        }
        known.look = look_;
        visit(id, known);
    }
    std::erase_if(known_, [this](const auto& known) { return known.second.look != look_; });
}

std::optional<std::uint64_t> KnownProcesses::footprint(const ProcDirectory& proc, ProcessId id) {
    const auto found = known_.find(id);
    if (found == known_.end()) {
        proc.read(id, "status", text_);
        return footprintFromStatus(text_);
    }
    Known& known = found->second;
    proc.read(id, "statm", text_);
    if (text_.empty() || text_ != known.pages) {
        known.pages = text_;
        proc.read(id, "status", text_);
        known.footprint = footprintFromStatus(text_);
    }
    return known.footprint;
}

std::vector<ProcessEntry> ProcKernel::processTable() const {
    struct Main {
        ProcessId id;
        bool ownsWindows;
        std::uint64_t startTime;
    };
    std::vector<ProcessEntry> table;
    std::unordered_map<std::string, Main> mains;
    std::vector<std::pair<std::size_t, const Main*>> members;
    const std::set<ProcessId> windowOwners = windowOwners_();
    known_.look(proc_, [&](ProcessId id, const KnownProcesses::Known& known) {
        table.push_back({.id = id, .parent = known.parent, .responsible = 0});
        if (known.unit.empty())
            return;
        const Main candidate{id, windowOwners.contains(id), known.startTime};
        const auto [main, isFirst] = mains.try_emplace(known.unit, candidate);
        const auto rank = [](const Main& one) {
            return std::pair(!one.ownsWindows, one.startTime);
        };
        if (!isFirst && rank(candidate) < rank(main->second))
            main->second = candidate;
        members.emplace_back(table.size() - 1, &main->second);
    });
    for (const auto& [index, main] : members) {
        if (main->id != table[index].id)
            table[index].responsible = main->id;
    }
    return table;
}

std::optional<std::uint64_t> ProcKernel::footprint(ProcessId id) const {
    return known_.footprint(proc_, id);
}

std::optional<std::uint64_t> footprintFromStatus(std::string_view status) {
    return sumOfKibibytes<3>(status, {"RssAnon:", "RssShmem:", "VmSwap:"});
}

std::set<ProcessId> ProcKernel::responsibleProcesses(const std::vector<ProcessId>& ids) const {
    const std::set<ProcessId> windowOwners = windowOwners_();
    std::map<ProcessId, ProcessEntry> byId;
    if (!ids.empty()) {
        for (const ProcessEntry& process : processTable())
            byId.emplace(process.id, process);
    }
    const auto answersTo = [&](ProcessId id) {
        const auto own = byId.find(id);
        if (own == byId.end() || windowOwners.contains(id))
            return id;
        if (own->second.responsible != 0)
            return own->second.responsible;
        // Limited to the number of processes: a table read while processes change may contain a
        // cycle.
        auto next = own;
        for (std::size_t steps = 0; steps < byId.size() && next != byId.end(); ++steps) {
            if (windowOwners.contains(next->first))
                return next->first;
            next = byId.find(next->second.parent);
        }
        return id;
    };
    std::set<ProcessId> responsible;
    for (const ProcessId id : ids)
        responsible.insert(answersTo(id));
    return responsible;
}

std::optional<std::string> ProcKernel::machineModel() const {
    std::string model = sysLine("class/dmi/id/product_name");
    if (isPlaceholder(model))
        model = sysLine("firmware/devicetree/base/model");
    if (isPlaceholder(model))
        return std::nullopt;
    const std::string vendor = sysLine("class/dmi/id/sys_vendor");
    const std::string firstWord = vendor.substr(0, vendor.find(' '));
    const bool saysMore = !isPlaceholder(vendor) && model.find(firstWord) == std::string::npos;
    return utf8(saysMore ? vendor + ' ' + model : model);
}

std::string ProcKernel::processorBrand() const {
    const std::string info = proc_.read("cpuinfo");
    const std::string brand = textAt(info, "model name");
    return brand.empty() ? textAt(info, "Hardware") : brand;
}

std::string ProcKernel::sysLine(const char* name) const {
    std::string line;
    std::getline(std::ifstream(sys_ + '/' + name), line);
    line.erase(std::min(line.find('\0'), line.size()));
    line.erase(line.find_last_not_of(" \t") + 1);
    return line;
}

} // namespace velmorquit
