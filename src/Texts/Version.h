#pragma once

#include <string>
#include <string_view>

namespace velmorquit {

/// The version line of one of the programs: "velmorctl 1.2.3".
[[nodiscard]] std::string versionLine(std::string_view program);

} // namespace velmorquit
