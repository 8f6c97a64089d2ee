#pragma once

#include "Platform/RunningApplication.h"

#include <string>
#include <string_view>

namespace velmorquit {

/// The content of `/proc/ID/NAME`; empty when the process has gone or hides it.
[[nodiscard]] std::string readProcFile(ProcessId id, std::string_view name);

} // namespace velmorquit
