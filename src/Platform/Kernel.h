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
    std::uint64_t internal = 0;   ///< of programs: not a copy of what a file holds
    std::uint64_t purgeable = 0;  ///< of these, what a program lets be taken away
    std::uint64_t wired = 0;      ///< of the kernel, for its own use
    std::uint64_t compressor = 0; ///< taken by compressed memory, as it is held
};

/// One process of the table.
struct ProcessEntry {
    ProcessId id = 0;
    ProcessId parent = 0;
    /// The process of the application to which the system counts this one; 0 when it doesn't say.
    ProcessId responsible = 0;
};

/// What the system's kernel knows of processes and memory. All of it is quick. Processes are asked
/// about on the main thread, the rest on any.
class Kernel {
public:
    virtual ~Kernel() = default;

    /// The id of this very process.
    [[nodiscard]] virtual ProcessId ownProcessId() const = 0;

    /// Physical memory in bytes.
    [[nodiscard]] virtual std::uint64_t totalMemory() const = 0;

    /// None when the kernel doesn't say.
    [[nodiscard]] virtual std::optional<MemoryPages> memoryPages() const = 0;

    /// All processes; empty when they can't be listed.
    [[nodiscard]] virtual std::vector<ProcessEntry> processTable() const = 0;

    /// Memory that would come free if the process ended, in bytes, wherever it is held (resident,
    /// compressed or swapped out); none when the process has gone or may not be looked at.
    [[nodiscard]] virtual std::optional<std::uint64_t> footprint(ProcessId id) const = 0;

    /// The processes of the applications to which the system counts these; a process itself when it
    /// doesn't say.
    [[nodiscard]] virtual std::set<ProcessId>
    responsibleProcesses(const std::vector<ProcessId>& ids) const = 0;

    /// What the maker calls the computer; none when nobody says.
    [[nodiscard]] virtual std::optional<std::string> machineModel() const = 0;

    /// What the processor calls itself; empty when it can't be read.
    [[nodiscard]] virtual std::string processorBrand() const = 0;
};

} // namespace velmorquit
