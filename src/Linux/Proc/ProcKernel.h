#pragma once

#include "Platform/Kernel.h"

#include <optional>
#include <string_view>

namespace velmorquit {

/// The kernel as /proc shows it.
class ProcKernel final : public Kernel {
public:
    [[nodiscard]] ProcessId ownProcessId() const override;
    [[nodiscard]] std::optional<std::uint64_t> footprint(ProcessId id) const override;
};

/// Anonymous, shared and swapped-out memory in bytes, from what `/proc/PID/status` holds: what
/// nobody else maps from a file. None without these lines, as for a kernel thread.
[[nodiscard]] std::optional<std::uint64_t> footprintFromStatus(std::string_view status);

} // namespace velmorquit
