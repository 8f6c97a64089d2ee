#pragma once

#include <string>

namespace velmorquit::tmutil {

/// The short usage of velmorquit-tmutil.
[[nodiscard]] std::string usage();

/// The full usage of a command; the short form for an unknown one.
[[nodiscard]] std::string usage(const std::string& command);

} // namespace velmorquit::tmutil
