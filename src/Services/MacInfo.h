#pragma once

#include "Loop/MainLoop.h"
#include "Platform/Kernel.h"

#include <functional>
#include <string>
#include <string_view>

namespace velmorquit::MacInfo {

/// The processor's name as shown, from its own brand string.
[[nodiscard]] std::string chipName(std::string_view brand);

/// Finds out the computer's model and processor off the main thread, then calls `completion` on the
/// main loop with both in one line, unless the handle was reset. `kernel` outlives the loop.
[[nodiscard]] Handle load(MainLoop& loop, const Kernel& kernel,
                          std::function<void(const std::string& line)> completion);

} // namespace velmorquit::MacInfo
