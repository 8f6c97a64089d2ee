#pragma once

#include "Linux/Proc/ProcDirectory.h"
#include "Linux/Proc/ProcessStat.h"
#include "Platform/Kernel.h"

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velmorquit {

/// Remembers what doesn't change of processes, which costs more to read than all the rest: which
/// program is whose child, and its unit.
///
/// A process that was there at the last look is the same one. It gets another parent only when that
/// one ends, and its unit when it is started: one that is still young is looked at every time. All
/// are looked at anew every half a minute.
class KnownProcesses {
public:
    struct Known {
        ProcessId parent = 0;
        std::uint64_t startTime = 0;
        std::string unit; ///< as `applicationUnit`
        bool isSettled = false;
        unsigned look = 0; ///< the last one at which it was there
        std::string pages; ///< its `statm` when `footprint` was read
        std::optional<std::uint64_t> footprint;
    };

    /// Calls `visit` with the id of every process and what is known of it.
    void look(const ProcDirectory& proc, const std::function<void(ProcessId, const Known&)>& visit);

    /// As `footprintFromStatus`. The full account is read only when the counts of pages, which cost
    /// a fifth of it, are not what they were: a sleeping program's stay the same.
    [[nodiscard]] std::optional<std::uint64_t> footprint(const ProcDirectory& proc, ProcessId id);

private:
    [[nodiscard]] bool readInto(Known& known, ProcessId id, const ProcDirectory& proc,
                                std::chrono::seconds now);

    std::unordered_map<ProcessId, Known> known_;
    std::string text_; ///< what was read last; kept for its room
    unsigned look_ = 0;
    std::chrono::seconds emptiedAt_{};
};

/// The kernel as /proc and /sys show it.
class ProcKernel final : public Kernel {
public:
    explicit ProcKernel(const std::string& proc = "/proc", std::string sys = "/sys");

    /// Says which processes own windows: of the processes of one unit, such a one is the
    /// application. Asked once per question about processes, on the thread of whoever puts it.
    void setWindowOwners(std::function<std::set<ProcessId>()> owners) {
        windowOwners_ = std::move(owners);
    }

    [[nodiscard]] ProcessId ownProcessId() const override;
    [[nodiscard]] std::uint64_t totalMemory() const override;
    /// In pages of one byte: what the kernel states are figures in kibibytes.
    [[nodiscard]] std::optional<MemoryPages> memoryPages() const override;
    [[nodiscard]] std::vector<ProcessEntry> processTable() const override;
    [[nodiscard]] std::optional<std::uint64_t> footprint(ProcessId id) const override;
    /// The application of the same unit, else the nearest process that owns windows among those
    /// that it descends from.
    [[nodiscard]] std::set<ProcessId>
    responsibleProcesses(const std::vector<ProcessId>& ids) const override;
    [[nodiscard]] std::optional<std::string> machineModel() const override;
    [[nodiscard]] std::string processorBrand() const override;

private:
    [[nodiscard]] std::string sysLine(const char* name) const;

    ProcDirectory proc_;
    std::string sys_;
    mutable KnownProcesses known_;
    std::function<std::set<ProcessId>()> windowOwners_ = [] { return std::set<ProcessId>(); };
};

/// Anonymous, shared and swapped-out memory in bytes, from what `/proc/PID/status` holds: what
/// nobody else maps from a file. None without these lines, as for a kernel thread.
[[nodiscard]] std::optional<std::uint64_t> footprintFromStatus(std::string_view status);

} // namespace velmorquit
