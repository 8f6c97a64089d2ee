#pragma once

#include "Platform/RunningApplication.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// How the computer's memory is used, in pages of `pageSize` bytes.
struct MemoryPages {
    std::uint64_t pageSize = 0;
    std::uint64_t internal = 0;   ///< of programs, not backed by files
    std::uint64_t purgeable = 0;  ///< part of these that programs allow to be dropped
    std::uint64_t wired = 0;      ///< of the kernel, for its own use
    std::uint64_t compressor = 0; ///< occupied by compressed memory, in its compressed size
};

/// One process of the table.
struct ProcessEntry {
    ProcessId id = 0;
    ProcessId parent = 0;
    /// The application's process that the system counts this one to; 0 when it doesn't say.
    ProcessId responsible = 0;
};

/// The kernel's knowledge of processes and memory. All calls are quick. Those about processes
/// belong on the main thread, the rest on any.
class Kernel {
public:
    virtual ~Kernel() = default;

    /// The id of this program's process.
    [[nodiscard]] virtual ProcessId ownProcessId() const = 0;

    /// Physical memory in bytes.
    [[nodiscard]] virtual std::uint64_t totalMemory() const = 0;

    /// None when the kernel doesn't tell.
    [[nodiscard]] virtual std::optional<MemoryPages> memoryPages() const = 0;

    /// All processes; empty when they can't be listed.
    [[nodiscard]] virtual std::vector<ProcessEntry> processTable() const = 0;

    /// Memory that would come free if the process ended, in bytes, wherever it is held (resident,
    /// compressed or swapped out); none when the process has gone or may not be inspected.
    [[nodiscard]] virtual std::optional<std::uint64_t> footprint(ProcessId id) const = 0;

    /// The application processes that the system counts these to; where it doesn't say, a process
    /// counts to itself.
    [[nodiscard]] virtual std::set<ProcessId>
    responsibleProcesses(const std::vector<ProcessId>& ids) const = 0;

    /// The computer's model, as named by its maker; none when unknown.
    [[nodiscard]] virtual std::optional<std::string> machineModel() const = 0;

    /// The processor's own name; empty when it can't be read.
    [[nodiscard]] virtual std::string processorBrand() const = 0;
};

} // namespace velmorquit
