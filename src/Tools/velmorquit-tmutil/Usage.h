#pragma once

#include <string>

namespace velmorquit::tmutil {

/// How velmorquit-tmutil is used, in short.
[[nodiscard]] std::string usage();

/// All about a command; the short form for one that isn't known.
[[nodiscard]] std::string usage(const std::string& command);

} // namespace velmorquit::tmutil
