#pragma once

#include "Loop/MainLoop.h"
#include "Platform/Kernel.h"

#include <functional>
#include <string>
#include <string_view>

namespace velmorquit::MacInfo {

/// The processor as it is shown, from what it calls itself.
[[nodiscard]] std::string chipName(std::string_view brand);

/// Finds out the computer's model and processor elsewhere, then calls `completion` on the main loop
/// with one line of both, unless the handle was reset meanwhile. `kernel` outlives the loop.
[[nodiscard]] Handle load(MainLoop& loop, const Kernel& kernel,
                          std::function<void(const std::string& line)> completion);

} // namespace velmorquit::MacInfo
