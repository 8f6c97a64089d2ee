#pragma once

#include <string>
#include <string_view>

namespace velmorquit {

/// What one of the programs says of itself when it is asked for its version: "velmorctl 1.2.3".
[[nodiscard]] std::string versionLine(std::string_view program);

} // namespace velmorquit
