#pragma once

#include "Linux/Proc/ProcDirectory.h"
#include "Linux/Proc/ProcessStat.h"
#include "Platform/Kernel.h"

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velmorquit {

/// Remembers which unit each process is in, which costs as much to read as all the rest of the
/// table.
///
/// A process is moved to its unit when it is started. One that is still young is looked at every
/// time, and all of them anew every half a minute.
class ApplicationUnits {
public:
    /// To be called before each look at all processes.
    void beginLook();

    /// As `applicationUnit`, valid until the next look. `text` is memory to read into.
    const std::string& of(const ProcessStat& process, const ProcDirectory& proc, std::string& text);

private:
    struct Known {
        std::uint64_t startTime = 0;
        bool isSettled = false;
        std::string unit;
    };

    std::unordered_map<ProcessId, Known> known_;
    std::chrono::seconds now_{};
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
    mutable ApplicationUnits units_;
    std::function<std::set<ProcessId>()> windowOwners_ = [] { return std::set<ProcessId>(); };
};

/// Anonymous, shared and swapped-out memory in bytes, from what `/proc/PID/status` holds: what
/// nobody else maps from a file. None without these lines, as for a kernel thread.
[[nodiscard]] std::optional<std::uint64_t> footprintFromStatus(std::string_view status);

} // namespace velmorquit
