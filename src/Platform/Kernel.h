#pragma once

#include "Platform/RunningApplication.h"

#include <cstdint>
#include <optional>

namespace velmorquit {

/// What the system's kernel knows of processes and memory.
class Kernel {
public:
    virtual ~Kernel() = default;

    /// The id of this very process.
    [[nodiscard]] virtual ProcessId ownProcessId() const = 0;

    /// Memory that would come free if the process ended, in bytes, wherever it is held (resident,
    /// compressed or swapped out); none when the process has gone or may not be looked at.
    [[nodiscard]] virtual std::optional<std::uint64_t> footprint(ProcessId id) const = 0;
};

} // namespace velmorquit
