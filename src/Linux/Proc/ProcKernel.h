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

/// Caches the facts about processes that don't change and cost more to read than all others:
/// their parents and their units.
///
/// A process seen at the last look is the same one now. Its parent changes only when that ends, and
/// its unit only at its start: young processes are read at every look. All of them are read anew
/// every half minute.
class KnownProcesses {
public:
    struct Known {
        ProcessId parent = 0;
        std::uint64_t startTime = 0;
        std::string unit; ///< as `applicationUnit`
        bool isSettled = false;
        unsigned look = 0; ///< number of the last look that found it
        std::string pages; ///< its `statm` when `footprint` was read
        std::optional<std::uint64_t> footprint;
    };

    /// Calls `visit` with the id of every process and the facts known about it.
    void look(const ProcDirectory& proc, const std::function<void(ProcessId, const Known&)>& visit);

    /// See `footprintFromStatus`. The full account is read only when the page counts, which cost a
    /// fifth of it, have changed: those of a sleeping program don't.
    [[nodiscard]] std::optional<std::uint64_t> footprint(const ProcDirectory& proc, ProcessId id);

private:
    [[nodiscard]] bool readInto(Known& known, ProcessId id, const ProcDirectory& proc,
                                std::chrono::seconds now);

    std::unordered_map<ProcessId, Known> known_;
    std::string text_; ///< the last text read; kept for its memory
    unsigned look_ = 0;
    std::chrono::seconds emptiedAt_{};
};

/// The kernel as /proc and /sys show it.
class ProcKernel final : public Kernel {
public:
    explicit ProcKernel(const std::string& proc = "/proc", std::string sys = "/sys");

    /// `owners` tells which processes own windows: one of these is the application among the
    /// processes of its unit. Called once per query of processes, on the querying thread.
    void setWindowOwners(std::function<std::set<ProcessId>()> owners) {
        windowOwners_ = std::move(owners);
    }

    [[nodiscard]] ProcessId ownProcessId() const override;
    [[nodiscard]] std::uint64_t totalMemory() const override;
    /// In pages of one byte, since the kernel's figures are in kibibytes.
    [[nodiscard]] std::optional<MemoryPages> memoryPages() const override;
    [[nodiscard]] std::vector<ProcessEntry> processTable() const override;
    [[nodiscard]] std::optional<std::uint64_t> footprint(ProcessId id) const override;
    /// The application of the same unit, or else the nearest of its ancestors that owns
    /// windows.
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

/// Anonymous, shared and swapped-out memory in bytes, from the content of `/proc/PID/status`: all
/// that isn't mapped from files. None without these lines, as for a kernel thread.
[[nodiscard]] std::optional<std::uint64_t> footprintFromStatus(std::string_view status);

} // namespace velmorquit
